#pragma once

#include "store/Store.h"

#include <atomic>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

namespace monitorservice::test {

/// A store that counts what is committed through it, and notes what is claimed.
class CountingStore final : public Store
{
public:
    explicit CountingStore(std::unique_ptr<Store> store) : m_store(std::move(store)) {}

    int commits() const { return m_commits; }
    /// In the order in which they were asked for.
    std::vector<Claim> claims() const
    {
        const std::lock_guard lock(m_guard);
        return m_claims;
    }

    using Store::read;
    std::unique_ptr<const Session> read(const Expectations& expected) override
    {
        return m_store->read(expected);
    }
    using Store::write;
    std::unique_ptr<Session> write(const Claim& claim, const Expectations& expected) override
    {
        {
            const std::lock_guard lock(m_guard);
            m_claims.push_back(claim);
        }
        return std::make_unique<CountingSession>(m_store->write(claim, expected), m_commits);
    }
    void checkReady() override { m_store->checkReady(); }

private:
    class CountingSession final : public Session
    {
    public:
        CountingSession(std::unique_ptr<Session> session, std::atomic<int>& commits)
            : m_session(std::move(session)), m_commits(commits)
        {
        }

        const Documents& documents(DocumentKind kind) const override
        {
            return std::as_const(*m_session).documents(kind);
        }
        const Measurements& measurements() const override { return std::as_const(*m_session).measurements(); }
        const Excesses& excesses() const override { return std::as_const(*m_session).excesses(); }
        const Projects& projects() const override { return std::as_const(*m_session).projects(); }
        const Categories& categories() const override { return std::as_const(*m_session).categories(); }
        const Tokens& tokens() const override { return std::as_const(*m_session).tokens(); }
        const Grants& grants() const override { return std::as_const(*m_session).grants(); }
        const Outbox& outbox() const override { return std::as_const(*m_session).outbox(); }

        Documents& documents(DocumentKind kind) override { return m_session->documents(kind); }
        Measurements& measurements() override { return m_session->measurements(); }
        Excesses& excesses() override { return m_session->excesses(); }
        Projects& projects() override { return m_session->projects(); }
        Categories& categories() override { return m_session->categories(); }
        Tokens& tokens() override { return m_session->tokens(); }
        Grants& grants() override { return m_session->grants(); }
        Outbox& outbox() override { return m_session->outbox(); }

        Instant now() const override { return m_session->now(); }
        std::string newIdentifier() override { return m_session->newIdentifier(); }
        std::string lastIdentifier() const override { return m_session->lastIdentifier(); }
        void skipIdentifiers(const std::string& last) override { m_session->skipIdentifiers(last); }
        bool isUnfinished() const override { return m_session->isUnfinished(); }
        void setUnfinished(bool unfinished) override { m_session->setUnfinished(unfinished); }
        void commit() override
        {
            m_session->commit();
            ++m_commits;
        }

    private:
        std::unique_ptr<Session> m_session;
        std::atomic<int>& m_commits;
    };

    std::unique_ptr<Store> m_store;
    std::atomic<int> m_commits{0};
    mutable std::mutex m_guard; ///< of what follows
    std::vector<Claim> m_claims;
};

} // namespace monitorservice::test
