#pragma once
// The vertical list of template items ("ImList" in skins): a scroll area with
// a column of item widgets. A click on an item outside its buttons is an
// item click.

#include <QScrollArea>

class QVBoxLayout;

namespace ui::qt {

class ImList : public QScrollArea {
  Q_OBJECT
 public:
  explicit ImList(QWidget* parent = nullptr);

  bool AddAt(QWidget* item, int index);  // index -1 appends
  bool Remove(QWidget* item);            // deletes it
  void RemoveAll();
  int Count() const;
  QWidget* ItemAt(int index) const;
  int IndexOf(QWidget* item) const;
  void SetSpacing(int pixels);

 signals:
  void itemClicked(QWidget* item);

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  QWidget* column_;
  QVBoxLayout* layout_;
};

}  // namespace ui::qt
