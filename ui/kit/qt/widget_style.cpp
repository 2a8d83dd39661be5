#include "ui/kit/qt/widget_style.h"

#include <QVariant>

namespace ui::qt {
namespace {

QString Rgba(const QColor& c) {
  return QStringLiteral("rgba(%1,%2,%3,%4)")
      .arg(c.red())
      .arg(c.green())
      .arg(c.blue())
      .arg(c.alpha());
}

}  // namespace

void SetControlColor(QWidget* widget, const char* role, QColor color) {
  // The skin's own sheet is kept aside the first time, so that repeated
  // changes replace the earlier colour instead of piling up.
  if (!widget->property("im_skinSheet").isValid()) {
    widget->setProperty("im_skinSheet", widget->styleSheet());
  }
  widget->setProperty(role, color);
  QString declarations;
  QColor background = widget->property("im_bkcolor").value<QColor>();
  QColor text = widget->property("im_textcolor").value<QColor>();
  // A flat fill, as the skins mean it: without "border" the style would
  // still draw its own shaded panel over the colour.
  if (background.isValid()) {
    declarations += QStringLiteral("background-color:%1;border:none;").arg(Rgba(background));
  }
  if (text.isValid()) declarations += QStringLiteral("color:%1;").arg(Rgba(text));
  QString sheet = widget->property("im_skinSheet").toString();
  if (sheet.contains(QLatin1Char('{')) && !widget->objectName().isEmpty()) {
    // A sheet with rules needs a rule of its own for this control.
    sheet += QStringLiteral("\n#%1{%2}").arg(widget->objectName(), declarations);
  } else {
    sheet += QLatin1Char('\n') + declarations;
  }
  widget->setStyleSheet(sheet);
}

}  // namespace ui::qt
