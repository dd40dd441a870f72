#pragma once

#include <QString>

#include <memory>
#include <stdexcept>

class MonitorService;

/// Where the contract is tested: a service of the suite's own, or the one that these variables name.
///
///     RK_CONTRACT_BASE_API            its address; absent: the suite starts a service of its own
///     RK_CONTRACT_PROJECT             identifier of a project there
///     RK_CONTRACT_TOKEN_FILE          file of a token that may read, create, edit and delete in the project
///     RK_CONTRACT_READER_TOKEN_FILE   file of a token that may only read there (may be absent)
///     RK_CONTRACT_CA_FILE             certificates to trust instead of the system's (may be absent)
///     RK_CONTRACT_RUN                 the text that marks what this run creates; absent: one by chance
///
/// Everything that a run creates belongs to monitorings that have its mark in their name.
class Deployment
{
public:
    /// Why nothing can be tested there, in words for people, with the status to exit with: as rkmon's, 2 for
    /// a wrong setting, 3 for what the token may not do, 5 when there is no answer, 1 for anything else.
    struct Unusable : std::runtime_error
    {
        Unusable(int code, const QString& text) : std::runtime_error(text.toStdString()), exitCode(code) {}
        int exitCode;
    };

    /// Finds the service, points the library at it, and finds a category to work in. Throws Unusable.
    Deployment();
    ~Deployment();
    Deployment(const Deployment&) = delete;
    Deployment& operator=(const Deployment&) = delete;

    /// The one that tests use: the living one.
    static const Deployment& current();

    /// The suite's own, whose project is in America/Los_Angeles.
    bool isOwn() const { return m_service != nullptr; }

    QString baseAddress;
    QString project;
    QString editorToken;
    /// Empty: there is none.
    QString readerToken;
    /// A category with at least one sub-category in which the editor may do everything.
    QString category;
    /// The text that marks what this run creates; letters, digits and '-' alone.
    QString run;

private:
    void startService();
    void readVariables();
    void askService();
    QString usableCategory() const;

    std::unique_ptr<MonitorService> m_service;
};
