#include "apps/host_frame.h"

#include <QCloseEvent>
#include <QCoreApplication>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>
#include <QWidget>

#include "host/local/local_host.h"
#include "platform/strings.h"

namespace demo {
namespace {

// A few walls and a dimension line: enough to look like a floor plan.
class PlaceholderDrawing : public QWidget {
 protected:
  void paintEvent(QPaintEvent*) override {
    QPainter p(this);
    p.fillRect(rect(), QColor(0x21, 0x28, 0x30));
    p.setPen(QPen(QColor(0x5D, 0xC8, 0xCD), 2));
    QRect plan = rect().adjusted(60, 80, -60, -80);
    p.drawRect(plan);
    p.drawLine(plan.center().x(), plan.top(), plan.center().x(), plan.bottom() - 80);
    p.drawLine(plan.left(), plan.center().y(), plan.center().x() - 40, plan.center().y());
    p.setPen(QColor(0xDD, 0xE0, 0xE4));
    p.drawText(rect().adjusted(0, 20, 0, 0), Qt::AlignHCenter | Qt::AlignTop,
               QStringLiteral("一层平面图.dwg（占位图纸）"));
  }
};

QString Q(const WString& text) {
  return QString::fromStdU16String(text);
}

QString PersonName(host::local::LocalHost& host, int32_t accountId) {
  std::optional<AccountInfo> account = host.FindAccount(accountId);
  return account && !account->displayName.empty() ? Q(account->displayName)
                                                  : QString::number(accountId);
}

}  // namespace

HostFrame::HostFrame(host::local::LocalHost& host) : host_(host) {
  setObjectName(QStringLiteral("DemoHostFrame"));
  setWindowTitle(QStringLiteral("绘图主机 — 聊天模块演示"));
  auto* drawing = new PlaceholderDrawing;
  setCentralWidget(drawing);

  sessionPanel_ = new QWidget(drawing);
  sessionPanel_->setObjectName(QStringLiteral("DemoSharedSessionPanel"));
  sessionPanel_->setAccessibleName(QStringLiteral("共享聊图"));
  sessionPanel_->setStyleSheet(QStringLiteral(
      "#DemoSharedSessionPanel { background: #F5F7F9; border-radius: 6px; }"
      "QLabel { color: #212830; font-size: 12px; }"
      "QPushButton { background: #5DC8CD; color: white; border: none; border-radius: 4px;"
      " padding: 4px 10px; }"));
  auto* layout = new QVBoxLayout(sessionPanel_);
  sessionText_ = new QLabel(sessionPanel_);
  sessionText_->setObjectName(QStringLiteral("DemoSharedSessionText"));
  sessionText_->setAccessibleName(QStringLiteral("共享聊图状态"));
  sessionText_->setWordWrap(true);
  sessionText_->setAlignment(Qt::AlignLeft | Qt::AlignTop);
  leaveButton_ = new QPushButton(QStringLiteral("离开共享聊图"), sessionPanel_);
  leaveButton_->setObjectName(QStringLiteral("DemoLeaveSharedChat"));
  leaveButton_->setAccessibleName(QStringLiteral("离开共享聊图"));
  layout->addWidget(sessionText_, 1);
  layout->addWidget(leaveButton_, 0, Qt::AlignRight);
  sessionPanel_->setGeometry(16, 450, 528, 150);
  sessionPanel_->hide();
  connect(leaveButton_, &QPushButton::clicked, this, [this] {
    if (leave_) leave_();
    RefreshSession();
  });
  auto* follow = new QTimer(this);
  connect(follow, &QTimer::timeout, this, &HostFrame::RefreshSession);
  follow->start(250);
  setGeometry(40, 40, 560, 680);
}

void HostFrame::RefreshSession() {
  std::optional<SharedSessionInfo> session = host_.OwnSession();
  if (!session) {
    sessionPanel_->hide();
    return;
  }
  QStringList who;
  for (int32_t id : host_.SessionMembers(session->groupId)) who << PersonName(host_, id);
  QString text = QStringLiteral("共享聊图：%1\n参与者（%2人）：%3")
                     .arg(Q(host_.DrawingNameOf(session->drawingRef)))
                     .arg(who.size())
                     .arg(who.join(QStringLiteral("、")));
  // The drawing-sync changes that reached the drawing, newest last.
  std::vector<int32_t> updates = host_.DrawingInfoUpdates();
  std::vector<WString> syncs = host_.SentSyncs();
  text += QStringLiteral("\n收到的图纸同步：%1 次更新，%2 条同步指令")
              .arg(updates.size())
              .arg(syncs.size());
  const size_t from = updates.size() > 3 ? updates.size() - 3 : 0;
  for (size_t i = from; i < updates.size(); ++i) {
    text += QStringLiteral("\n  · 图纸信息更新（类型 %1）已应用").arg(updates[i]);
  }
  sessionText_->setText(text);
  sessionPanel_->show();
}

void* HostFrame::NativeHandle() {
  return reinterpret_cast<void*>(static_cast<uintptr_t>(winId()));
}

void HostFrame::closeEvent(QCloseEvent* event) {
  event->accept();
  QCoreApplication::quit();
}

}  // namespace demo
