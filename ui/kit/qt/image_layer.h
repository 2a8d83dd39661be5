#pragma once
// Paints a control's skin images ("bkimage", "normalimage", "hotimage",
// "pushedimage") over it, each with its source and destination rectangles,
// choosing by the control's state. It never takes mouse input.

#include <QPixmap>
#include <QRect>
#include <QWidget>

#include <map>
#include <string>

namespace ui::qt {

class ImageLayer : public QWidget {
  Q_OBJECT
 public:
  // The layer of `control`, created on first use.
  static ImageLayer* Of(QWidget* control);

  struct Image {
    QPixmap pixmap;
    QRect source;  // null = whole
    QRect dest;    // null = whole control
  };
  // `slot` is one of the four attribute names; a null pixmap clears it.
  void SetImage(const std::string& slot, const Image& image);
  bool HasImage(const std::string& slot) const;
  // The image that would be painted now as the state image (for tests).
  std::string CurrentStateSlot() const;

 protected:
  void paintEvent(QPaintEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  explicit ImageLayer(QWidget* control);
  void Draw(QPainter& painter, const Image& image);

  std::map<std::string, Image> images_;
};

}  // namespace ui::qt
