// Dialogs as the user sees and uses them, off screen, in the application that the library makes for a host without.
#include <gtest/gtest.h>

#include <QAccessible>
#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QFontDatabase>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QRegularExpression>
#include <QScreen>
#include <QTest>
#include <QTimer>
#include <QWindow>
#include <functional>
#include <map>
#include <memory>
#include <set>

#include "account/service_manager.h"
#include "language/translation_catalogue.h"
#include "platform/linux/windowing/controls.h"
#include "platform/linux/windowing/display_selection.h"
#include "platform/linux/windowing/window_tree.h"
#include "resources/resource_ids.h"
#include "support/run_program.h"
#include "support/temporary_home.h"
#include "ui/busy_cursor.h"
#include "ui/dialog.h"
#include "ui/message.h"

namespace nvsupport {
namespace {

class DialogLooks : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    std::string whyNot;
    ASSERT_NE(windowing::OpenDisplay(whyNot), nullptr) << whyNot;
  }

  // Hands the window that `open` opens to `look` and closes it.
  static void Show(const std::function<void()>& open, const std::function<void(QWidget&)>& look) {
    QTimer::singleShot(0, [&look] {
      QWidget* window = QApplication::activeModalWidget();
      ASSERT_TRUE(window != nullptr && QTest::qWaitForWindowActive(window));
      QCoreApplication::processEvents();  // scroll bars come with the next round
      look(*window);
      window->close();
    });
    open();
  }

  CServiceManager session{"Looks"};
  HWND owner = nullptr;
  const std::map<std::string, std::function<void()>> openings = {
      {"sign_in", [this] { session.Login(owner); }},
      {"create_account", [this] { session.CreateAccount(owner); }},
      {"computer_name", [this] { session.SetDeviceName(owner); }},
      {"message", [this] { ShowMessage(owner, MB_ICONERROR, "No <b>!</b>"); }},
  };
};

// Empty for a message box.
QList<QWidget*> ControlsOf(const QWidget& window) {
  return window.findChildren<QWidget*>(QRegularExpression(QStringLiteral("^[0-9]+$")));
}

// Places in dialog units: from the left, to the middle of the height, and the width.
std::string Described(const QWidget& window) {
  const QFontMetrics font(QApplication::font());
  const int letter =
      (font.horizontalAdvance(QStringLiteral("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz")) + 51) / 52;
  std::string all;
  for (const QWidget* control : ControlsOf(window)) {
    const QRect place = control->geometry();
    const auto units = [](int pixels, int base, int unit) { return std::to_string((pixels * unit + base / 2) / base); };
    all += units(place.x(), letter, 4) + ' ' + units(2 * place.y() + place.height(), font.height(), 4) + ' ' +
           units(place.width(), letter, 4);
    if (const auto* label = qobject_cast<const QLabel*>(control))
      all += std::string(label->alignment() & Qt::AlignRight ? " right" : " left") + " label " +
             label->text().toStdString();
    if (const auto* edit = qobject_cast<const QLineEdit*>(control)) all += " edit " + edit->displayText().toStdString();
    if (const auto* box = qobject_cast<const QCheckBox*>(control))
      all += " box " + box->text().toStdString() + (box->isChecked() ? ", ticked" : "");
    if (const auto* button = qobject_cast<const QPushButton*>(control))
      all += " button " + button->text().toStdString() + (button->isDefault() ? ", default" : "");
    if (!control->isEnabled()) all += ", disabled";
    all += control->hasFocus() ? ", focus\n" : control->focusPolicy() == Qt::ClickFocus ? ", not by Tab\n" : "\n";
  }
  return all;
}

TEST_F(DialogLooks, AreReadToTheBlindInTheOrderOfTheTemplate) {
  Show(openings.at("create_account"), [&](QWidget& window) {
    QAccessibleInterface* const dialog = QAccessible::queryAccessibleInterface(&window);
    std::vector<std::string> order;
    for (int i = 0; i < dialog->childCount(); ++i) {
      const QAccessibleInterface* const control = dialog->child(i);
      if (control->role() == QAccessible::StaticText) continue;
      order.push_back(control->text(QAccessible::Name).toStdString() + (control->state().passwordEdit ? "*" : ""));
    }
    EXPECT_EQ(order,
              (std::vector<std::string>{"User ID", "Password*", "Retype Password*", "Your name", "Company/Affiliation",
                                        "Email", "Keep me informed about product news and updates",
                                        "I accept Norvane's Personal Data Privacy Policy", "OK", "Cancel",
                                        "View Privacy Policy", "Help"}));
    auto* const password = window.findChild<QLineEdit*>(QString::number(IDC_PASSWORD));
    for (const bool isLocked : {true, false}) {
      QKeyEvent press(QEvent::KeyPress, Qt::Key_A, Qt::NoModifier, 0, 0, isLocked ? 2 : 0, QStringLiteral("a"));
      QCoreApplication::sendEvent(password, &press);
      const QString told = QAccessible::queryAccessibleInterface(password)->text(QAccessible::Description);
      EXPECT_EQ(told, isLocked ? QStringLiteral("CapsLock") : QString());
    }
  });
}

TEST_F(DialogLooks, ShowEachControlAsTheTemplateAndTheUserHaveIt) {
  QApplication::setFont(QFont(QStringLiteral("DejaVu Sans"), 9));
  Show(openings.at("sign_in"), [](const QWidget& window) {
    for (const char key : std::string("ann\tword\t ")) QTest::keyClick(QApplication::focusWidget(), key);
    EXPECT_EQ(
        Described(window),
        R"(180 91 79 left label User ID and Passwords are not case sensitive. Spaces, punctuation and characters after the first 16 are ignored.
1 26 63 left label New Users:
70 26 99 button &Create Account
18 53 152 left label If you already have an account:
19 70 45 right label &User ID
70 70 99 edit ann
10 90 54 right label &Password
70 90 99 edit ●●●●
71 109 95 box &Save password, ticked, focus
76 138 50 button OK, default
139 138 69 button &I Forgot...
221 138 45 button Cancel
13 138 50 button &Help
)");
  });
}

TEST_F(DialogLooks, TickABoxWhereverItIsClickedOnAndTakeOneToAFieldByALetterOfItsName) {
  const testing::TemporaryFolder folder;
  testing::WriteWholeFile(folder / "texts.txt", "User ID\tUnder\nHelp\tH&und\n");
  EXPECT_TRUE(translations.LoadCatalogueFile(folder / "texts.txt"));
  Show(openings.at("sign_in"), [](QWidget& window) {
    auto* const box = window.findChild<QCheckBox*>();
    for (const bool ticked : {true, false}) {
      QTest::mouseClick(box, Qt::LeftButton, {}, box->rect().bottomRight());
      EXPECT_EQ(box->isChecked(), ticked);
    }
    for (const auto& [key, id] : {std::pair(Qt::Key_P, IDC_PASSWORD), {Qt::Key_N, IDC_USER_ID}}) {
      QTest::keyClick(&window, key, Qt::AltModifier);
      EXPECT_EQ(QApplication::focusWidget(), window.findChild<QLineEdit*>(QString::number(id))) << "U is taken";
    }
    for (QWidget* const control : ControlsOf(window)) {
      if (control->focusPolicy() == Qt::NoFocus) continue;
      control->setFocus();
      const HWND focused = windowing::FocusedControlOfProcess();
      EXPECT_EQ(focused, GetDlgItem(windowing::DialogOf(focused), control->objectName().toInt()));
    }
  });
  translations.WriteMissFile();  // empties the catalogue
}

TEST_F(DialogLooks, ShowThePressedButtonDisabledWhileTheThreadWaits) {
  class Waiting final : public Dialog {
   public:
    Waiting() : Dialog(IDD_COMPUTER_NAME) {}
    void onOK() override {
      const auto* const ok = QApplication::activeModalWidget()->findChild<QPushButton*>(QStringLiteral("1"));
      const auto looksDisabled = [ok] {
        return ok->palette().color(QPalette::ButtonText) ==
               QApplication::palette().color(QPalette::Disabled, QPalette::ButtonText);
      };
      {
        const BusyCursor wait;
        EXPECT_TRUE(looksDisabled() && ok->isEnabled());
      }
      EXPECT_FALSE(looksDisabled());
      QTimer::singleShot(0, [] { QApplication::activeModalWidget()->close(); });
      ShowMessage(hwnd, MB_OK, "takes the input meanwhile");
      QCoreApplication::processEvents();
      EXPECT_EQ(QApplication::activeWindow(), ok->window());
      Dialog::onOK();
    }
  };
  Show(openings.at("sign_in"), [](const QWidget&) {  // there is another dialog below it
    QTimer::singleShot(0, [] { QTest::keyClick(QApplication::activeModalWidget(), Qt::Key_Return); });
    EXPECT_EQ(Waiting().run(nullptr), IDOK);
  });
}

TEST_F(DialogLooks, ShowTheFramesOfFieldsAndBoxesOnBlack) {
  QApplication::setPalette(Qt::black);
  Show(openings.at("sign_in"), [](const QWidget& window) {
    for (const int id : {IDC_PASSWORD, IDC_SAVE_PASSWORD}) {
      const QImage control = window.findChild<QWidget*>(QString::number(id))->grab().toImage();
      int lightest = 0;
      for (int x = 0; x < 5; ++x) lightest = std::max(lightest, control.pixelColor(x, control.height() / 2).value());
      EXPECT_GT(lightest, 100) << id;
    }
  });
  QApplication::setPalette(QPalette());
}

TEST_F(DialogLooks, GoWhileAHandlerOfTheirsShowsAMessage) {
  class Vanishing final : public Dialog {
   public:
    Vanishing() : Dialog(IDD_COMPUTER_NAME) {}
    void onOK() override {
      QTimer::singleShot(0, [window = hwnd] { DestroyWindow(window); });
      EXPECT_EQ(ShowMessage(hwnd, MB_OK, "goes with it"), IDOK);
    }
  };
  QTimer::singleShot(0, [] { QTest::keyClick(QApplication::activeModalWidget(), Qt::Key_Return); });
  EXPECT_EQ(Vanishing().run(nullptr), 0);
}

TEST_F(DialogLooks, GiveTheTextOfAMessageToTheClipboard) {
  SetMessageCaption(std::string(60, 'W'));
  QApplication::setStyle(QStringLiteral("Windows"));  // which would let nobody select a text
  Show(openings.at("message"), [](QWidget& window) {
    QFont caption = window.font();
    caption.setBold(true);
    EXPECT_GE(window.width(), QFontMetrics(caption).horizontalAdvance(window.windowTitle())) << "as it may be shown";
    window.setWindowTitle(QStringLiteral("Caption"));
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_C);
    EXPECT_EQ(QApplication::clipboard()->text(), QString());
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_C, Qt::ControlModifier);
    const std::string line(27, '-');
    EXPECT_EQ(QApplication::clipboard()->text().toStdString(),
              line + "\nCaption\n" + line + "\nNo <b>!</b>\n" + line + "\nOK\n" + line + '\n');
    auto* const text = window.findChild<QLabel*>(QStringLiteral("qt_msgbox_label"));
    QTest::mouseDClick(text, Qt::LeftButton, {}, {5, text->height() / 2});
    EXPECT_EQ(text->selectedText(), QStringLiteral("No"));
    text->setSelection(0, static_cast<int>(text->text().size()));
    EXPECT_EQ(text->selectedText(), text->text()) << "the user reads all of it";
    auto* const picture = window.findChild<QLabel*>(QStringLiteral("qt_msgboxex_icon_label"));
    EXPECT_TRUE(picture != nullptr && !picture->pixmap().isNull()) << "an error has its sign";
    EXPECT_TRUE(window.findChild<QPushButton*>()->icon().isNull()) << "as in the dialogs, which have no room for one";
  });
}

TEST_F(DialogLooks, HaveTheMenuOfTheirEditsInTheLanguageInForce) {
  const std::pair<const char*, const char*> cuts[] = {
      {"Deutsch", "&Ausschneiden"}, {"Francais", "Co&uper"}, {"Nederlands", "Kni&ppen"}, {"", "Cu&t"}};
  for (const auto& [language, cut] : cuts) {
    platform::SetDisplayLanguage(language);
    Show(openings.at("sign_in"), [&, shown = cut](const QWidget& window) {
      const std::unique_ptr<QMenu> menu(window.findChild<QLineEdit*>()->createStandardContextMenu());
      EXPECT_EQ(menu->actions().at(3)->text().section(QLatin1Char('\t'), 0, 0).toStdString(), shown);
    });
  }
}

TEST_F(DialogLooks, TellATextThatDoesNotFitByAToolTip) {
  static constexpr int controls[] = {IDC_SAVE_PASSWORD, IDC_HELP_PAGE, 0xFFFF};  // a box, a button and a label
  class Crowded final : public Dialog {
   public:
    Crowded() : Dialog(IDD_SIGN_IN) {}
    INT_PTR onInitDialog(WPARAM, LPARAM) override {
      for (const int id : controls) setItemText(id, "A &text that does not fit <b>here</b>" + std::string(100, 'x'));
      return 1;
    }
  };
  Show([] { Crowded().run(nullptr); },
       [](const QWidget& window) {
         for (const int id : controls) {
           const std::string tip = window.findChild<QWidget*>(QString::number(id))->toolTip().toStdString();
           EXPECT_TRUE(tip.starts_with("A text that does not fit &lt;b&gt;here&lt;/b&gt;xxx")) << id << ' ' << tip;
         }
         EXPECT_EQ(window.findChild<QLabel*>(QStringLiteral("65535"))->textFormat(), Qt::PlainText);
       });
}

TEST_F(DialogLooks, OfThePreviewHaveATextThatDoesNotFitInRed) {
  const testing::TemporaryFolder folder;
  testing::WriteWholeFile(folder / "texts.txt", "Help\t" + std::string(50, 'W') + '\n');
  EXPECT_EQ(testing::RunProgram({NV_CATALOGUE, "preview", folder / "texts.txt", "--png", folder / ""}).exitCode, 1);
  const QImage picture(QString::fromStdString(folder / "sign-in.png"));
  int reds = 0;
  for (int pixel = 0; pixel < picture.width() * picture.height(); ++pixel) {
    const QColor colour = picture.pixelColor(pixel % picture.width(), pixel / picture.width());
    if (colour.red() > 150 && colour.blue() < 100 && colour.green() < 100) ++reds;
  }
  EXPECT_GT(reds, 50);
}

std::string NameOf(const QWidget& control) {
  return control.objectName().toStdString() + "\n";
}

// Controls that Tab and the page keys alone do not bring into sight, and what they lead to unseen.
std::string Unseen(const QWidget& window) {
  const QList<QWidget*> controls = ControlsOf(window);
  const auto isSeen = [](const QWidget* control) { return control->visibleRegion().boundingRect() == control->rect(); };
  std::string faults;
  std::set<QWidget*> unseen(controls.begin(), controls.end());
  for (qsizetype i = 0; i < controls.size(); ++i) {
    for (const Qt::Key key : {Qt::Key_PageUp, Qt::Key_PageDown, Qt::Key_Tab}) {
      QTest::keyClick(QApplication::focusWidget(), key);
      std::erase_if(unseen, isSeen);
    }
    if (!isSeen(QApplication::focusWidget())) faults += "has the focus unseen: " + NameOf(*QApplication::focusWidget());
    if (!isSeen(window.findChild<QWidget*>(QStringLiteral("1")))) faults += "OK is out of sight\n";
  }
  for (const QWidget* control : unseen) faults += "unseen: " + NameOf(*control);
  return faults;
}

// What is wrong with a window, one line a fault.
std::string Faults(const QWidget& window) {
  QFont caption = window.font();
  caption.setBold(true);
  const bool isNarrow = window.width() < QFontMetrics(caption).horizontalAdvance(window.windowTitle());
  std::string faults = isNarrow ? "caption cut\n" : "";
  const bool hasPin = window.windowIcon().pixmap(48, 48).toImage().pixelColor(16, 19) == Qt::white;
  if (!hasPin) faults += "no icon\n";
  const QScreen* const screen = QGuiApplication::screenAt(window.geometry().center());
  if (screen == nullptr || !screen->geometry().contains(window.frameGeometry())) faults += "beyond the screen\n";
  if (window.inherits("QMessageBox")) return faults;  // whose layout sees to the rest
  std::set<QString> keys;
  for (const QWidget* control : ControlsOf(window)) {
    const std::string name = NameOf(*control);
    if (!control->toolTip().isEmpty()) faults += "text cut, told by a tool tip: " + name;
    const bool isButton = control->inherits("QPushButton");  // whose style asks for more than its text takes
    const QSize least = isButton ? QSize(0, control->fontMetrics().height()) : control->minimumSizeHint();
    if (least.boundedTo(control->size()) != least) faults += "text cut: " + name;
    const auto* const label = qobject_cast<const QLabel*>(control);
    const bool isInFront = control->parentWidget()->childAt(control->geometry().center()) == control;
    if (!isInFront && label == nullptr) faults += "covered: " + name;
    const auto* const button = qobject_cast<const QAbstractButton*>(control);
    const QString key = QKeySequence::mnemonic(button != nullptr  ? button->text()
                                               : label != nullptr ? label->text()
                                                                  : QString())
                            .toString();
    if (!key.isEmpty() && !keys.insert(key).second) faults += "another control has its key: " + name;
    const bool hasName =
        button != nullptr ? name != "1\n" && name != "2\n" : label != nullptr && label->buddy() != nullptr;
    if (key.isEmpty() == hasName) faults += "a key where none belongs, or none: " + name;
  }
  return faults;
}

// Of five fonts in three sizes and two styles, the combinations that leave each control the least room it gets in any
// of them, or 2 % of its width more.
constexpr struct {
  const char* family;
  int points;
  const char* style;
} looks[] = {
    {"Cantarell", 9, "Fusion"},         {"Noto Sans", 9, "Fusion"},          {"Noto Sans", 9, "Windows"},
    {"Noto Sans", 11, "Fusion"},        {"Noto Sans", 15, "Fusion"},         {"Noto Sans CJK JP", 11, "Windows"},
    {"Noto Sans CJK JP", 15, "Fusion"}, {"Noto Sans CJK JP", 15, "Windows"}, {"DejaVu Sans", 15, "Fusion"},
    {"Liberation Sans", 9, "Fusion"},   {"Liberation Sans", 15, "Fusion"},
};

// A font for each resolution of the screen stands for that; each dialog is shown on each of the two screens.
TEST_F(DialogLooks, AreWholeInEveryFontStyleAndLanguageOnEveryScreen) {
  const QString pictures = qEnvironmentVariable("NV_PICTURES");  // names a folder for a picture of each
  const auto lookAt = [&](const std::string& look) {
    for (const auto& opening : openings) {
      const std::string name = opening.first + look;
      Show(opening.second, [&](QWidget& window) {
        if (!pictures.isEmpty()) window.grab().save(pictures + QString::fromStdString("/" + name + ".png"));
        EXPECT_EQ(Faults(window) + (owner != nullptr ? Unseen(window) : ""), "") << name;
      });
    }
  };
  for (const std::string language : {"English", "Deutsch", "Francais", "Nederlands"}) {
    const std::string texts = NV_SOURCE_FOLDER "/src/resources/catalogues/nvsupport." + language + ".txt";
    EXPECT_EQ(translations.LoadCatalogueFile(texts), language != "English") << texts;
    SetMessageCaption(std::string(Translate("Account Manager")));
    for (const auto& [family, points, style] : looks) {
      EXPECT_TRUE(QFontDatabase::hasFamily(QString::fromLatin1(family))) << family << " is not installed";
      QApplication::setFont(QFont(QString::fromLatin1(family), points));
      QApplication::setStyle(QString::fromLatin1(style));
      lookAt("." + language + "." + family + "." + std::to_string(points) + "." + style);
    }
    for (QScreen* const screen : QGuiApplication::screens()) {
      QWidget host;
      host.setGeometry(QRect(screen->geometry().center(), QSize(300, 200)));
      host.show();
      owner = reinterpret_cast<HWND>(host.winId());
      for (const int dpi : {144, 192}) {
        QApplication::setFont(QFont(QStringLiteral("Noto Sans"), 9 * dpi / 96));
        lookAt("." + language + "." + std::to_string(screen->geometry().height()) + "." + std::to_string(dpi));
      }
      owner = nullptr;
    }
  }
}

}  // namespace
}  // namespace nvsupport
