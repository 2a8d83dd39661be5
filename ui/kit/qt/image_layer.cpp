#include "ui/kit/qt/image_layer.h"

#include <QAbstractButton>
#include <QEvent>
#include <QPainter>

namespace ui::qt {

ImageLayer* ImageLayer::Of(QWidget* control) {
  if (auto* layer = control->findChild<ImageLayer*>(QString(), Qt::FindDirectChildrenOnly)) {
    return layer;
  }
  return new ImageLayer(control);
}

ImageLayer::ImageLayer(QWidget* control) : QWidget(control) {
  setAttribute(Qt::WA_TransparentForMouseEvents);
  setAttribute(Qt::WA_NoSystemBackground);
  setGeometry(control->rect());
  control->installEventFilter(this);
  raise();
  show();
}

void ImageLayer::SetImage(const std::string& slot, const Image& image) {
  if (image.pixmap.isNull()) {
    images_.erase(slot);
  } else {
    images_[slot] = image;
  }
  update();
}

bool ImageLayer::HasImage(const std::string& slot) const {
  return images_.count(slot) != 0;
}

std::string ImageLayer::CurrentStateSlot() const {
  auto* button = qobject_cast<QAbstractButton*>(parentWidget());
  if (button && button->isDown() && HasImage("pushedimage")) return "pushedimage";
  if (parentWidget()->underMouse() && HasImage("hotimage")) return "hotimage";
  if (HasImage("normalimage")) return "normalimage";
  return {};
}

void ImageLayer::Draw(QPainter& painter, const Image& image) {
  QRect dest = image.dest.isNull() ? rect() : image.dest;
  QRect source = image.source.isNull() ? image.pixmap.rect() : image.source;
  painter.drawPixmap(dest, image.pixmap, source);
}

void ImageLayer::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::SmoothPixmapTransform);
  if (auto it = images_.find("bkimage"); it != images_.end()) Draw(painter, it->second);
  std::string slot = CurrentStateSlot();
  if (!slot.empty()) Draw(painter, images_.at(slot));
}

bool ImageLayer::eventFilter(QObject* watched, QEvent* event) {
  if (watched == parentWidget()) {
    switch (event->type()) {
      case QEvent::Resize:
        setGeometry(parentWidget()->rect());
        break;
      case QEvent::ChildAdded:
        raise();
        break;
      case QEvent::Enter:
      case QEvent::Leave:
      case QEvent::MouseButtonPress:
      case QEvent::MouseButtonRelease:
        update();
        break;
      default:
        break;
    }
  }
  return QWidget::eventFilter(watched, event);
}

}  // namespace ui::qt
