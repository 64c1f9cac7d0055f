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
    m_out.writeStartElement("svg"_s);
    attribute("xmlns", "http://www.w3.org/2000/svg"_s);
    attribute("width", width);
    attribute("height", height);
    attribute("viewBox", "0 0 %1 %2"_s.arg(number(width), number(height)));
    attribute("font-family", "DejaVu Sans, Verdana, Arial, sans-serif"_s);

    m_out.writeStartElement("defs"_s);
    m_out.writeStartElement("pattern"_s);
    attribute("id", "hatch"_s);
    attribute("width", 5);
    attribute("height", 5);
    attribute("patternUnits", "userSpaceOnUse"_s);
    attribute("patternTransform", "rotate(45)"_s);
    rectangle(QRectF(0, 0, 5, 5), "#fff"_s, "none"_s);
    path({QPointF(0, 0), QPointF(0, 5)}, "#555"_s, 2.4);
    m_out.writeEndElement();
    m_out.writeEndElement();
    rectangle(QRectF(0, 0, width, height), "#fff"_s, "none"_s);
}

void Svg::rectangle(const QRectF &place, const QString &fill, const QString &stroke,
                    const QString &title)
{
    m_out.writeStartElement("rect"_s);
    attribute("x", place.x());
    attribute("y", place.y());
    attribute("width", place.width());
    attribute("height", place.height());
    attribute("fill", fill);
    attribute("stroke", stroke);
    if (!title.isEmpty())
        m_out.writeTextElement("title"_s, title);
    m_out.writeEndElement();
}

void Svg::path(const QVector<QPointF> &points, const QString &stroke, double width)
{
    QStringList texts;
    for (const QPointF &point : points)
        texts.append(number(point.x()) + QLatin1Char(',') + number(point.y()));
    m_out.writeStartElement("polyline"_s);
    attribute("points", texts.join(QLatin1Char(' ')));
    attribute("fill", "none"_s);
    attribute("stroke", stroke);
    attribute("stroke-width", width);
    m_out.writeEndElement();
}

void Svg::text(const QPointF &place, const QString &text, const TextStyle &style)
{
    m_out.writeStartElement("text"_s);
    attribute("x", place.x());
    attribute("y", place.y());
    attribute("font-size", style.size);
    attribute("text-anchor", style.anchor);
    attribute("fill", style.colour);
    if (style.bold)
        attribute("font-weight", "bold"_s);
    if (!qFuzzyIsNull(style.turn))
        attribute("transform", "rotate(%1 %2 %3)"_s.arg(number(style.turn), number(place.x()),
                                                        number(place.y())));
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
