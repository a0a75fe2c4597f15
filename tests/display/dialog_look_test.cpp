// What dialogs look like, told by measure, off screen, in the application that the library makes for a host without.
#include <gtest/gtest.h>

#include <QAccessible>
#include <QApplication>
#include <QCheckBox>
#include <QFontDatabase>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QStyleOption>
#include <QTimer>
#include <QWindow>
#include <functional>
#include <iostream>
#include <memory>

#include "core/service_manager.h"
#include "language/translation_catalogue.h"
#include "platform/linux/windowing/display_selection.h"
#include "resources/resource_ids.h"
#include "ui/dialog.h"
#include "ui/message.h"

namespace nvsupport {
namespace {

class DialogLooks : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_LOGGING_RULES", "default.warning=false");  // of the platform, about every window
    std::string whyNot;
    ASSERT_NE(windowing::OpenDisplay(whyNot), nullptr) << whyNot;
  }

  // Hands the window that `open` opens to `look` and closes it.
  static void Show(const std::function<void()>& open, const std::function<void(QWidget&)>& look) {
    QTimer::singleShot(0, [&look] {
      QWidget* window = QApplication::activeModalWidget();
      ASSERT_NE(window, nullptr);
      look(*window);
      window->close();
    });
    open();
  }

  CServiceManager session{"Looks"};
  const std::map<std::string, std::function<void()>> openings = {
      {"sign_in", [this] { session.Login(nullptr); }},
      {"create_account", [this] { session.CreateAccount(nullptr); }},
      {"computer_name", [this] { session.SetDeviceName(nullptr); }},
      {"message", [] { ShowMessage(nullptr, MB_ICONERROR, "You must provide a valid email address."); }},
  };
};

std::string PlainText(const QWidget& control) {
  QString text;
  if (const auto* label = qobject_cast<const QLabel*>(&control)) text = label->text();
  if (const auto* button = qobject_cast<const QAbstractButton*>(&control)) text = button->text();
  return text.remove(QLatin1Char('&')).toStdString();
}

// The room that the style leaves for a control's text, and what the text takes, both at the control's top left.
struct Rooms {
  QSize room;
  QSize taken;
};

template <class Option>
QSize RoomOf(const QWidget& control, QStyle::SubElement element) {
  Option option;
  option.initFrom(&control);
  return control.style()->subElementRect(element, &option, &control).size();
}

Rooms Measure(const QWidget& control) {
  const QFontMetrics font(control.font());
  const QString text = QString::fromStdString(PlainText(control));
  if (control.inherits("QCheckBox")) {
    return {RoomOf<QStyleOptionButton>(control, QStyle::SE_CheckBoxContents), font.size(0, text)};
  }
  if (control.inherits("QPushButton")) {
    return {RoomOf<QStyleOptionButton>(control, QStyle::SE_PushButtonContents), font.size(0, text)};
  }
  if (control.inherits("QLineEdit")) {
    return {RoomOf<QStyleOptionFrame>(control, QStyle::SE_LineEditContents), {0, font.height()}};
  }
  const QSize lines = font.boundingRect(0, 0, control.width(), QWIDGETSIZE_MAX, Qt::TextWordWrap, text).size();
  return {control.size(), {lines.width(), std::max(font.height(), lines.height() - font.leading())}};
}

std::string CutText(const QWidget& control) {
  const auto [room, taken] = Measure(control);
  if (taken.width() <= room.width() && taken.height() <= room.height()) return "";
  return "cut: \"" + PlainText(control) + "\", " + std::to_string(taken.width()) + "x" +
         std::to_string(taken.height()) + " in " + std::to_string(room.width()) + "x" + std::to_string(room.height()) +
         "\n";
}

// Where a control shows something: of a label that is its text.
QRect Shown(const QWidget& control) {
  const auto* label = qobject_cast<const QLabel*>(&control);
  if (label == nullptr) return control.geometry();
  QRect text(control.pos(), Measure(control).taken);
  if ((label->alignment() & Qt::AlignRight) != 0) text.moveRight(control.geometry().right());
  return text;
}

// What is wrong with a window, one line a fault.
std::string Faults(const QWidget& window) {
  std::string faults = window.windowIcon().isNull() ? "no icon\n" : "";
  const auto controls = window.findChildren<QWidget*>(Qt::FindDirectChildrenOnly);
  for (const QWidget* control : controls) {
    const std::string name = control->objectName().toStdString() + " \"" + PlainText(*control) + "\"\n";
    faults += CutText(*control);
    if (!control->toolTip().isEmpty()) faults += "told by a tool tip: " + name;
    if (!window.rect().contains(Shown(*control))) faults += "outside: " + name;
    const bool isInFront = window.childAt(control->geometry().center()) == control;
    if (!isInFront && !control->inherits("QLabel")) faults += "covered: " + name;
    for (const QWidget* other : controls) {
      if (other > control && Shown(*control).intersects(Shown(*other))) faults += "not alone: " + name;
    }
  }
  return faults;
}

// Qt lays the box itself out: its text is all there if it has the room that it asks for.
std::string FaultsOfMessage(const QWidget& box) {
  QFont caption = box.font();
  caption.setBold(true);
  const bool isNarrow = box.width() < QFontMetrics(caption).horizontalAdvance(box.windowTitle());
  std::string faults = isNarrow ? "caption cut\n" : "";
  for (const QLabel* label : box.findChildren<QLabel*>()) faults += CutText(*label);
  return faults;
}

TEST_F(DialogLooks, AreReadToTheBlindInTheOrderOfTheTemplate) {
  const char* expected[] = {"User ID", "Password", "Retype Password", "Your name", "Company/Affiliation", "Email"};
  Show(openings.at("create_account"), [&](QWidget& window) {
    QAccessibleInterface* const dialog = QAccessible::queryAccessibleInterface(&window);
    std::vector<std::string> order;
    std::vector<std::string> edits;
    std::string secrets;
    for (int i = 0; i < dialog->childCount(); ++i) {
      QAccessibleInterface* const control = dialog->child(i);
      order.push_back(control->object()->objectName().toStdString());
      if (control->role() != QAccessible::EditableText) continue;
      edits.push_back(control->text(QAccessible::Name).toStdString());
      secrets += control->state().passwordEdit ? '1' : '0';
      EXPECT_EQ(control->relations(QAccessible::Label).size(), 1) << edits.back() << " is labelled";
    }
    const std::string label = "65535";
    EXPECT_EQ(order, (std::vector<std::string>{label,  label,  label,  label,  "1001", label,  "1003",
                                               label,  "1005", label,  "1007", label,  "1009", label,
                                               "1012", "1014", "1019", "1",    "2",    "1030", "1041"}));
    EXPECT_EQ(edits, std::vector<std::string>(std::begin(expected), std::end(expected)));
    EXPECT_EQ(secrets, "011000");
  });
}

TEST_F(DialogLooks, AreOwnedByTheTopLevelWindowOfTheHostsWidget) {
  QPixmap picture(16, 16);
  picture.fill(Qt::red);
  QApplication::setWindowIcon(picture);
  QWidget host;
  QPushButton button(&host);
  host.show();
  const auto owner = reinterpret_cast<HWND>(button.winId());
  Show([&] { Dialog(IDD_COMPUTER_NAME).run(owner); },
       [&](const QWidget& window) {
         EXPECT_EQ(window.windowHandle()->transientParent(), host.windowHandle());
         EXPECT_EQ(window.windowIcon().cacheKey(), QApplication::windowIcon().cacheKey());
         EXPECT_FALSE(window.testAttribute(Qt::WA_QuitOnClose)) << "the host lives on, its windows hidden or not";
       });
  QApplication::setWindowIcon(QIcon());
}

TEST_F(DialogLooks, StayAsTheyAreUnderAMessage) {
  Show(openings.at("create_account"), [](const QWidget& window) {
    auto* ok = window.findChild<QPushButton*>(QStringLiteral("1"));
    Show([ok] { ok->click(); }, [](const QWidget& message) { EXPECT_TRUE(message.inherits("QMessageBox")); });
    for (const QWidget* control : window.findChildren<QWidget*>()) {
      EXPECT_FALSE(control->testAttribute(Qt::WA_NativeWindow)) << "a window with a cursor of its own";
    }
  });
}

TEST_F(DialogLooks, ShowABoxTickedAndNotTicked) {
  Show(openings.at("sign_in"), [](const QWidget& window) {
    auto* box = window.findChild<QCheckBox*>();
    box->click();
    EXPECT_TRUE(box->isChecked());
    box->click();
    EXPECT_FALSE(box->isChecked());
  });
}

TEST_F(DialogLooks, HaveTheMenuOfTheirEditsInTheLanguageInForce) {
  const std::pair<const char*, const char*> cuts[] = {
      {"Deutsch", "&Ausschneiden"}, {"Francais", "Co&uper"}, {"Nederlands", "Kni&ppen"}, {"", "Cu&t"}};
  for (const auto& [language, cut] : cuts) {
    platform::SetDisplayLanguage(language);
    Show(openings.at("sign_in"), [&, cut = cut](const QWidget& window) {
      const std::unique_ptr<QMenu> menu(window.findChild<QLineEdit*>()->createStandardContextMenu());
      EXPECT_EQ(menu->actions().at(3)->text().section(QLatin1Char('\t'), 0, 0).toStdString(), cut);
    });
  }
}

TEST_F(DialogLooks, TellATextThatDoesNotFitByAToolTip) {
  class Crowded final : public Dialog {
   public:
    Crowded() : Dialog(IDD_COMPUTER_NAME) {}
    INT_PTR onInitDialog(WPARAM, LPARAM) override {
      setItemText(IDC_HELP_PAGE, "A &text that is far too long <b>here</b>");
      return 1;
    }
  };
  Show([] { Crowded().run(nullptr); },
       [](const QWidget& window) {
         EXPECT_EQ(window.findChild<QWidget*>(QString::number(IDC_HELP_PAGE))->toolTip(),
                   QStringLiteral("A text that is far too long &lt;b&gt;here&lt;/b&gt;"));
       });
}

TEST_F(DialogLooks, AreWholeInEveryFontStyleAndLanguage) {
  const QPalette light;
  const QPalette dark(QColor(0x30, 0x30, 0x30));
  const QString pictures = qEnvironmentVariable("NV_PICTURES");  // names a folder for a picture of each
  std::map<std::string, std::vector<std::string>> combinationsOfFault;
  int combinations = 0;
  const auto lookAt = [&](const std::string& look) {
    for (const auto& opening : openings) {
      const std::string name = opening.first + look;
      ++combinations;
      Show(opening.second, [&](QWidget& window) {
        if (!pictures.isEmpty()) window.grab().save(pictures + QString::fromStdString("/" + name + ".png"));
        const std::string faults = opening.first == "message" ? FaultsOfMessage(window) : Faults(window);
        if (!faults.empty()) combinationsOfFault[faults].push_back(name);
      });
    }
  };
  for (const char* language : {"English", "Deutsch", "Francais", "Nederlands"}) {
    const std::string texts = NV_SOURCE_FOLDER "/src/resources/catalogues/nvsupport." + std::string(language) + ".txt";
    const bool isSource = language == std::string("English");  // as long as no other is loaded
    EXPECT_EQ(translations.LoadCatalogueFile(texts), !isSource) << texts;
    SetMessageCaption(Translate("Account Manager"));
    for (const char* family : {"DejaVu Sans", "Noto Sans", "Cantarell", "Liberation Sans", "Noto Sans CJK JP"}) {
      EXPECT_TRUE(QFontDatabase::hasFamily(QString::fromLatin1(family))) << family << " is not installed";
      for (const int points : {9, 11, 15}) {
        QApplication::setFont(QFont(QString::fromLatin1(family), points));
        const std::string font = std::string(".") + language + "." + family + "." + std::to_string(points);
        for (const char* style : {"Fusion", "Windows"}) {
          QApplication::setStyle(QString::fromLatin1(style));
          QApplication::setPalette(light);
          lookAt(font + "." + style + ".light");
          QApplication::setPalette(dark);
          lookAt(font + "." + style + ".dark");
        }
      }
    }
  }
  for (const auto& [fault, names] : combinationsOfFault) {
    ADD_FAILURE() << fault << "in " << names.size() << " combinations, such as " << names.front();
  }
  std::cout << combinations << " combinations of window, language, font, size, style and palette" << std::endl;
}

}  // namespace
}  // namespace nvsupport
