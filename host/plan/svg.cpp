// Writes SVG through Qt's XML writer, which takes care of what a text must not hold.
#include "host/plan/svg.h"

#include <QtCore/QStringList>

namespace host {

namespace {

QString number(double value)
{
    return QString::number(value, 'f', 1);
}

}  // namespace

Svg::Svg(double width, double height) : m_out(&m_document)
{
    m_out.setAutoFormatting(true);
    m_out.setAutoFormattingIndent(1);
    m_out.writeStartDocument();
    m_out.writeStartElement(QStringLiteral("svg"));
    attribute("xmlns", QStringLiteral("http://www.w3.org/2000/svg"));
    attribute("width", width);
    attribute("height", height);
    attribute("viewBox", QStringLiteral("0 0 %1 %2").arg(number(width), number(height)));
    attribute("font-family", QStringLiteral("DejaVu Sans, Verdana, Arial, sans-serif"));

    m_out.writeStartElement(QStringLiteral("defs"));
    m_out.writeStartElement(QStringLiteral("pattern"));
    attribute("id", QStringLiteral("hatch"));
    attribute("width", 5);
    attribute("height", 5);
    attribute("patternUnits", QStringLiteral("userSpaceOnUse"));
    attribute("patternTransform", QStringLiteral("rotate(45)"));
    rectangle(QRectF(0, 0, 5, 5), QStringLiteral("#fff"), QStringLiteral("none"));
    path({QPointF(0, 0), QPointF(0, 5)}, QStringLiteral("#555"), 2.4);
    m_out.writeEndElement();
    m_out.writeEndElement();
    rectangle(QRectF(0, 0, width, height), QStringLiteral("#fff"), QStringLiteral("none"));
}

void Svg::rectangle(const QRectF &place, const QString &fill, const QString &stroke,
                    const QString &title)
{
    m_out.writeStartElement(QStringLiteral("rect"));
    attribute("x", place.x());
    attribute("y", place.y());
    attribute("width", place.width());
    attribute("height", place.height());
    attribute("fill", fill);
    attribute("stroke", stroke);
    if (!title.isEmpty())
        m_out.writeTextElement(QStringLiteral("title"), title);
    m_out.writeEndElement();
}

void Svg::path(const QVector<QPointF> &points, const QString &stroke, double width)
{
    QStringList texts;
    for (const QPointF &point : points)
        texts.append(number(point.x()) + QLatin1Char(',') + number(point.y()));
    m_out.writeStartElement(QStringLiteral("polyline"));
    attribute("points", texts.join(QLatin1Char(' ')));
    attribute("fill", QStringLiteral("none"));
    attribute("stroke", stroke);
    attribute("stroke-width", width);
    m_out.writeEndElement();
}

void Svg::text(const QPointF &place, const QString &text, const TextStyle &style)
{
    m_out.writeStartElement(QStringLiteral("text"));
    attribute("x", place.x());
    attribute("y", place.y());
    attribute("font-size", style.size);
    attribute("text-anchor", style.anchor);
    attribute("fill", style.colour);
    if (style.bold)
        attribute("font-weight", QStringLiteral("bold"));
    if (!qFuzzyIsNull(style.turn))
        attribute("transform", QStringLiteral("rotate(%1 %2 %3)")
                                   .arg(number(style.turn), number(place.x()), number(place.y())));
    m_out.writeCharacters(text);
    m_out.writeEndElement();
}

QByteArray Svg::finish()
{
    m_out.writeEndDocument();
    return m_document;
}

void Svg::attribute(const char *name, double value)
{
    attribute(name, number(value));
}

void Svg::attribute(const char *name, const QString &value)
{
    m_out.writeAttribute(QString::fromLatin1(name), value);
}

}  // namespace host
