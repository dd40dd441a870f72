#include "api/PointText.h"

#include "api/AnswerSize.h"
#include "domain/Document.h"
#include "domain/PointLocation.h"
#include "domain/SampleText.h"
#include "json/JsonText.h"

#include <optional>
#include <utility>

namespace monitorservice {

namespace {

// Writes one point after another; of each it learns that it is complete when the next one begins.
class PointWriter
{
public:
    explicit PointWriter(std::string begin) : m_text(std::move(begin)) {}

    void begin(const FoundPoint& point)
    {
        beginMembers(point);
        beginSamples();
    }

    // Other members may follow, then the samples.
    void beginMembers(const FoundPoint& point)
    {
        m_text += m_isFirstPoint ? "" : "]},";
        m_isFirstPoint = false;
        m_text += openedDocument(point.document);
        m_text += ",\"category\":";
        appendJsonString(m_text, point.category);
        m_text += ",\"entity\":";
        m_text += point.links;
    }

    // `begin` is what stands before the value, such as ,"reference":
    void addNumber(std::string_view begin, const std::optional<double>& number)
    {
        m_text += begin;
        if (number) {
            appendJsonNumber(m_text, *number);
        } else {
            m_text += "null";
        }
    }

    void beginSamples()
    {
        m_text += ",\"data\":[";
        m_isFirstSample = true;
        requireRoom(m_text.size());
    }

    void add(const Sample& sample)
    {
        m_text += m_isFirstSample ? "" : ",";
        m_isFirstSample = false;
        appendSample(m_text, sample);
        requireRoom(m_text.size());
    }

    std::string finish()
    {
        m_text += m_isFirstPoint ? "" : "]}";
        return std::move(m_text);
    }

private:
    std::string m_text;
    bool m_isFirstPoint = true;
    bool m_isFirstSample = true;
};

} // namespace

std::string pointTexts(PointSelection& selection, std::string begin)
{
    PointWriter writer(std::move(begin));
    selection.visitSamples(
        [&writer](const FoundPoint& point) {
            writer.begin(point);
            return true;
        },
        [&writer](const Sample& sample) { writer.add(sample); });
    return writer.finish();
}

std::string digestTexts(PointSelection& selection, const PointDigest& digest, std::string begin)
{
    PointWriter writer(std::move(begin));
    std::optional<double> initialValue;
    selection.visitSummaries(
        [&](const FoundPoint& point) {
            initialValue = initialValueIn(point.document);
            writer.beginMembers(point);
            return SummaryParts{digest.latest, !initialValue, digest.extremes};
        },
        [&](const PointSummary& summary) {
            writer.addNumber(",\"reference\":", initialValue ? initialValue : summary.earliest);
            if (digest.extremes) {
                writer.addNumber(",\"minimum\":", summary.smallest);
                writer.addNumber(",\"maximum\":", summary.largest);
            }
            writer.beginSamples();
            if (summary.latest) {
                writer.add(*summary.latest);
            }
        });
    return writer.finish();
}

} // namespace monitorservice
