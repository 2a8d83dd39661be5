#pragma once
// An animated picture ("ImAnimation" in skins, property "movieFile": a GIF
// relative to the skin folder). It plays while it is shown.

#include <QDir>
#include <QLabel>

class QMovie;

namespace ui::qt {

class ImAnimation : public QLabel {
  Q_OBJECT
  Q_PROPERTY(QString movieFile READ movieFile WRITE setMovieFile)
 public:
  ImAnimation(const QDir& skinFolder, QWidget* parent = nullptr);

  QString movieFile() const { return file_; }
  void setMovieFile(const QString& file);
  bool isPlaying() const;

 protected:
  void showEvent(QShowEvent* event) override;
  void hideEvent(QHideEvent* event) override;

 private:
  QDir skinFolder_;
  QString file_;
  QMovie* movie_ = nullptr;
};

}  // namespace ui::qt
