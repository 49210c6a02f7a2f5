#include "platform/desktop/Gate.h"

#include "platform/desktop/Actions.h"
#include "platform/desktop/Events.h"
#include "platform/desktop/ScrollList.h"
#include "tests/forms/Forms.h"

namespace {

using platform::Busy;
using platform::desktop::Action;
using platform::desktop::ActionTable;
using platform::desktop::Gate;
using platform::desktop::WhileBusy;
using tests::leftClick;

class GateTest : public testing::Test {
 protected:
  GateTest() {
    auto* const layout = new QVBoxLayout(&form_);
    QWidget* const widgets[] = {plain_, again_, cancel_, box_, rows_, owner_, log_};
    const char* const names[] = {"plain", "again", "cancel", "box", "rows", "owner", "log"};
    for (std::size_t i = 0; i < std::size(widgets); ++i) {
      widgets[i]->setObjectName(names[i]);
      layout->addWidget(widgets[i]);
    }
    log_->setReadOnly(true);
    owner_->setEntries({"usr1", "usr2", "usr3"});
    for (int i = 0; i < 200; ++i) rows_->addItem(QString::number(i));
    table_ = new ActionTable(form_, busy_,
                             {{"plain", [this] { done_ += "plain "; }, [this] { return usable_; }},
                              {"again", [this] { done_ += "again "; }, {}, WhileBusy::Remembered},
                              {"cancel", [this] { busy_.requestStop(); }, {}, WhileBusy::Acts},
                              {"box"},
                              {.name = "keys", .handler = [this] { done_ += "keys "; }, .keys = Qt::Key_F7}});
    form_.show();
    form_.activateWindow();
    QApplication::processEvents();
  }
  ~GateTest() override { delete table_; }

  Busy busy_;
  Gate gate_{busy_};
  QWidget form_;
  QPushButton* plain_ = new QPushButton;
  QPushButton* again_ = new QPushButton;
  QPushButton* cancel_ = new QPushButton;
  QLineEdit* box_ = new QLineEdit;
  QListWidget* rows_ = new QListWidget;
  platform::desktop::ScrollList* owner_ = new platform::desktop::ScrollList;
  QPlainTextEdit* log_ = new QPlainTextEdit("line");
  ActionTable* table_;
  bool usable_ = true;
  std::string done_;
};

TEST_F(GateTest, WhileAJobHoldsItOnlyWhatMayActsDoes) {
  leftClick(plain_);
  EXPECT_EQ(std::exchange(done_, ""), "plain ");
  {
    const Busy::Scope job(busy_);
    leftClick(plain_);
    plain_->click();  // as assistive tools do
    QTest::keyClick(&form_, Qt::Key_F7);
    QTest::keyClicks(box_, "typed");
    leftClick(rows_->viewport(), {5, 5});
    leftClick(again_);
    EXPECT_EQ(done_ + box_->text().toStdString(), "");
    EXPECT_EQ(rows_->currentRow(), -1);
    EXPECT_FALSE(busy_.stopRequested());
    leftClick(cancel_);
    EXPECT_TRUE(busy_.stopRequested());
  }
  EXPECT_EQ(done_, "again ");
  QTest::keyClick(&form_, Qt::Key_F7);
  EXPECT_EQ(done_, "again keys ");
}

TEST_F(GateTest, ScrollingGoesOnButTurnsNoList) {
  const Busy::Scope job(busy_);
  tests::turnWheel(rows_->viewport(), 1);
  EXPECT_GT(rows_->verticalScrollBar()->value(), 0);
  tests::turnWheel(owner_->viewport(), 1);
  EXPECT_EQ(owner_->topIndex(), 0);
  QTest::keyClick(log_, Qt::Key_A, Qt::ControlModifier);
  EXPECT_EQ(log_->textCursor().selectedText(), "line");
}

TEST_F(GateTest, ASlowJobLooksSoAndGivesTheKeyboardBack) {
  plain_->setFocus();
  {
    const Busy::Scope job(busy_);
    const Busy::Scope step(busy_);
    EXPECT_TRUE(QTest::qWaitFor([this] { return !plain_->isEnabled(); }, 2000));
    EXPECT_FALSE(box_->isEnabled());
    EXPECT_TRUE(again_->isEnabled() && cancel_->isEnabled() && rows_->isEnabled());
    EXPECT_FALSE(plain_->hasFocus());
  }
  EXPECT_TRUE(plain_->isEnabled() && box_->isEnabled());
  EXPECT_TRUE(plain_->hasFocus());
  {
    const Busy::Scope job(busy_);
    EXPECT_TRUE(QTest::qWaitFor([this] { return !plain_->isEnabled(); }, 2000));
    usable_ = false;  // what the job found out counts afterwards
  }
  EXPECT_FALSE(plain_->isEnabled());
  {
    const Busy::Scope quick(busy_);
    QApplication::processEvents();
    EXPECT_TRUE(box_->isEnabled());
  }
}

TEST_F(GateTest, WhatTheJobOpensWorksAndAStopRefusesIt) {
  const Busy::Scope job(busy_);
  QMessageBox own(QMessageBox::Question, "t", "q", QMessageBox::Yes | QMessageBox::No, &form_);
  own.setEscapeButton(QMessageBox::No);
  QTimer::singleShot(0, [&] { leftClick(own.button(QMessageBox::Yes)); });
  EXPECT_EQ(own.exec(), QMessageBox::Yes);
  QTimer::singleShot(0, [&] { busy_.requestStop(); });
  own.exec();
  EXPECT_EQ(own.clickedButton(), nullptr);
}

TEST_F(GateTest, TheEndIsToldOnceTheJobIsOver) {
  const QSignalSpy ends(&gate_, &Gate::endWanted);
  {
    const Busy::Scope job(busy_);
    busy_.requestEnd();
    EXPECT_TRUE(busy_.stopRequested());
    EXPECT_EQ(ends.count(), 0);
  }
  EXPECT_EQ(ends.count(), 1);
}

}  // namespace
