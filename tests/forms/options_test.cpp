#include "shell/ui/frmOptions.h"
#include "tests/forms/Forms.h"

namespace {

using tests::the;

/// The dialog's state: what is ticked, chosen and cannot be used, in tab order.
class OptionsTest : public testworld::World {
 protected:
  std::string state(const QWidget& form) const {
    std::string text;
    for (const char* name : {"checkUseExt", "checkMenuItems_0", "checkMenuItems_1", "checkMenuItems_2",
                             "checkMenuItems_3", "checkMenuItems_4", "checkMenuItems_5", "optPermMode_0",
                             "optPermMode_1", "optPerms_0", "optPerms_1", "checkUsr8"}) {
      const auto& button = the<QAbstractButton>(form, name);
      text += !button.isEnabled() ? (button.isChecked() ? 'X' : '-') : button.isChecked() ? 'x' : '.';
    }
    return text;
  }
  void store(const std::string& context, const std::string& mode, const std::string& source,
             const std::string& usr8) {
    stored_.setContextOptions(context);
    stored_.setDefaultPermissionMode(mode);
    stored_.setPermissionOptions(source);
    stored_.setUsr8(usr8);
  }
  std::string stored() const {
    return stored_.contextOptions() + ' ' + stored_.defaultPermissionMode() + ' ' +
           stored_.permissionOptions() + ' ' + stored_.usr8();
  }
};

TEST_F(OptionsTest, ShowsWhatIsStoredAndSavesWhatIsShown) {
  const struct {
    const char *context, *mode, *source, *usr8, *shown, *saved;
  } cases[] = {{"", "", "", "", ".------x..xx", "0000000 0 1 1"},
               {"1", "-1", "-1", "-1", "x......x..x.", "1000000 0 1 0"},
               {"0101010999", "1", "0", "2", ".X-X-X-.xX-x", "0101010 1 0 1"},
               {"1111111", "x", "7", "zero", "xxxxxxxx...x", "1111111 0 -1 1"},
               {"0111", "4", "1", "0", ".XXX---...x.", "0111000 -1 1 0"}};
  for (const auto& one : cases) {
    store(one.context, one.mode, one.source, one.usr8);
    shell::frmOptions form(services());
    form.open();
    EXPECT_EQ(state(form), one.shown);
    the<QPushButton>(form, "cmdOK").click();
    EXPECT_FALSE(form.isVisible());
    EXPECT_EQ(stored(), one.saved);
  }
  registry_.write(platform::Hive::LocalMachine, "SOFTWARE\\Halvoren Inc\\Pakrune", "usr8",
                  {platform::ValueType::Number, "0"});
  EXPECT_TRUE(shell::readOptions(stored_).usr8) << "a value of another type is none";
}

TEST_F(OptionsTest, ClicksEnableWhatDependsOnThemAndCancelSavesNothing) {
  store("1010000", "0", "0", "1");
  shell::frmOptions form(services());
  form.open();
  for (int tab = 0; tab < 3; ++tab) {
    the<QTabWidget>(form, "SSTab1").setCurrentIndex(tab);
    QApplication::processEvents();
    tests::checkTexts(form);
  }
  tests::press(form, "checkUseExt");
  tests::press(form, "optPermMode_1");
  EXPECT_EQ(state(form), ".-X----.xX-x");
  EXPECT_FALSE(the(form, "frameMenuItems").isEnabled() || the(form, "frameManualPerms").isEnabled());
  tests::press(form, "optPermMode_0");
  EXPECT_TRUE(the(form, "frameManualPerms").isEnabled());
  tests::press(form, "cmdExit");
  EXPECT_FALSE(form.isVisible());
  EXPECT_EQ(stored(), "1010000 0 0 1");
}

}  // namespace
