#include "ui/kit/qt/im_animation.h"

#include <QMovie>

#include "platform/trace.h"

namespace ui::qt {

ImAnimation::ImAnimation(const QDir& skinFolder, QWidget* parent)
    : QLabel(parent), skinFolder_(skinFolder) {
  setAlignment(Qt::AlignCenter);
}

void ImAnimation::setMovieFile(const QString& file) {
  file_ = file;
  delete movie_;
  movie_ = new QMovie(skinFolder_.filePath(QDir::fromNativeSeparators(file)), QByteArray(), this);
  if (!movie_->isValid()) {
    platform::Trace("ImAnimation: cannot play %s", file.toUtf8().constData());
    delete movie_;
    movie_ = nullptr;
    return;
  }
  setMovie(movie_);
  movie_->jumpToFrame(0);  // the first frame until it is shown
  if (isVisible()) movie_->start();
}

bool ImAnimation::isPlaying() const {
  return movie_ != nullptr && movie_->state() == QMovie::Running;
}

void ImAnimation::showEvent(QShowEvent* event) {
  QLabel::showEvent(event);
  if (movie_) movie_->start();
}

void ImAnimation::hideEvent(QHideEvent* event) {
  QLabel::hideEvent(event);
  if (movie_) movie_->stop();
}

}  // namespace ui::qt
