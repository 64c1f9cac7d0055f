// Writes the few SVG elements that a plan's picture is made of.
#pragma once

#include "plc/literals.h"

#include <QtCore/QPointF>
#include <QtCore/QRectF>
#include <QtCore/QVector>
#include <QtCore/QXmlStreamWriter>

namespace host {

struct TextStyle
{
    double size = 11;
    QString anchor = "start"_s;  ///< or "middle" or "end"
    QString colour = "#222"_s;
    bool bold = false;
    double turn = 0;  ///< degrees about the text's place
};

/** Coordinates are in pixels from the top left. */
class Svg
{
public:
    static constexpr char Hatch[] = "url(#hatch)";  ///< a fill

    Svg(double width, double height);
    Svg(const Svg &) = delete;
    Svg &operator=(const Svg &) = delete;

    /** A stroke may be "none". The title is shown while a pointer rests on it. */
    void rectangle(const QRectF &place, const QString &fill, const QString &stroke,
                   const QString &title = QString());
    void path(const QVector<QPointF> &points, const QString &stroke, double width);
    void text(const QPointF &place, const QString &text, const TextStyle &style = TextStyle());

    /** The whole document; nothing can be added behind it. */
    QByteArray finish();

private:
    void attribute(const char *name, double value);
    void attribute(const char *name, const QString &value);

    QByteArray m_document;
    QXmlStreamWriter m_out;
};

}  // namespace host
