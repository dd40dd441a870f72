#pragma once

#include <QFile>
#include <QPointF>
#include <QString>
#include <QStringList>
#include <QVector>
#include <QXmlStreamReader>

#include <gtest/gtest.h>

/// What an SVG file draws, in the order of drawing: lines and texts that stand upright.
struct SvgDrawing
{
    struct Line
    {
        QString colour;
        bool isDashed = false;
        QVector<QPointF> points;

        bool isUpright() const { return points.size() == 2 && points[0].x() == points[1].x(); }
        double length() const { return points.last().y() - points.first().y(); }
    };

    struct Text
    {
        QString text;
        QPointF place; ///< of the beginning of its baseline
        double size = 0.0;
    };

    QVector<Line> lines;
    QVector<Text> texts;

    QStringList allTexts() const
    {
        QStringList found;
        for (const Text& text : texts) {
            found.append(text.text);
        }
        return found;
    }
};

/// Reads the file at `path`. Fails the test when it is not well-formed.
inline SvgDrawing readSvg(const QString& path)
{
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    QXmlStreamReader xml(&file);
    SvgDrawing drawing;
    QString colour; // of the group that is open, the drawing has no other depth
    bool isDashed = false;
    while (!xml.atEnd()) {
        if (xml.readNext() != QXmlStreamReader::StartElement) {
            continue;
        }
        const QXmlStreamAttributes attributes = xml.attributes();
        const auto attribute = [&](const char* name) {
            return attributes.value(QString::fromLatin1(name)).toString();
        };
        if (xml.name() == QLatin1String("g")) {
            colour = attribute("stroke");
            isDashed = !attribute("stroke-dasharray").isEmpty() &&
                       attribute("stroke-dasharray") != QLatin1String("none");
        } else if (xml.name() == QLatin1String("polyline")) {
            SvgDrawing::Line line{colour, isDashed, {}};
            const QStringList places =
                attribute("points").simplified().split(QLatin1Char(' '), Qt::SkipEmptyParts);
            for (const QString& place : places) {
                const QStringList numbers = place.split(QLatin1Char(','));
                line.points.append({numbers.value(0).toDouble(), numbers.value(1).toDouble()});
            }
            drawing.lines.append(line);
        } else if (xml.name() == QLatin1String("text")) {
            SvgDrawing::Text text;
            text.place = {attribute("x").toDouble(), attribute("y").toDouble()};
            text.size = attribute("font-size").toDouble();
            text.text = xml.readElementText().simplified();
            drawing.texts.append(text);
        }
    }
    EXPECT_FALSE(xml.hasError()) << xml.errorString().toStdString();
    return drawing;
}
