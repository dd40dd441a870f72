#include "api/PointText.h"

#include "api/AnswerSize.h"
#include "domain/Document.h"
#include "domain/SampleText.h"
#include "json/JsonText.h"

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
        m_text += m_isFirstPoint ? "" : "]},";
        m_isFirstPoint = false;
        m_text += openedDocument(point.document);
        m_text += ",\"category\":";
        appendJsonString(m_text, point.category);
        m_text += ",\"entity\":";
        m_text += point.links;
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

} // namespace monitorservice
