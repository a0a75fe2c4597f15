// Dialogs as the user sees and uses them, off screen, in the application that the library makes for a host without.
#include <gtest/gtest.h>

#include <QAccessible>
#include <QApplication>
#include <QCheckBox>
#include <QFontDatabase>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <QWindow>
#include <functional>
#include <map>
#include <memory>

#include "account/service_manager.h"
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
  });
}

TEST_F(DialogLooks, TickABoxWhereverItIsClickedOn) {
  Show(openings.at("sign_in"), [](const QWidget& window) {
    auto* const box = window.findChild<QCheckBox*>();
    for (const bool ticked : {true, false}) {
      QTest::mouseClick(box, Qt::LeftButton, {}, box->rect().bottomRight());
      EXPECT_EQ(box->isChecked(), ticked);
    }
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
       });
}

// What is wrong with a window, one line a fault.
std::string Faults(const QWidget& window) {
  QFont caption = window.font();
  caption.setBold(true);
  const bool isNarrow = window.width() < QFontMetrics(caption).horizontalAdvance(window.windowTitle());
  std::string faults = isNarrow ? "caption cut\n" : "";
  const bool hasPin = window.windowIcon().pixmap(48, 48).toImage().pixelColor(16, 19) == Qt::white;
  if (!hasPin) faults += "no icon\n";
  if (window.inherits("QMessageBox")) return faults;  // whose layout sees to the rest
  for (const QWidget* control : window.findChildren<QWidget*>(Qt::FindDirectChildrenOnly)) {
    const std::string name = control->objectName().toStdString() + "\n";
    if (!control->toolTip().isEmpty()) faults += "text cut, told by a tool tip: " + name;
    const bool isButton = control->inherits("QPushButton");  // whose style asks for more than its text takes
    const QSize least = isButton ? QSize(0, control->fontMetrics().height()) : control->minimumSizeHint();
    if (least.boundedTo(control->size()) != least) faults += "text cut: " + name;
    if (!window.rect().contains(control->pos())) faults += "outside: " + name;
    const bool isInFront = window.childAt(control->geometry().center()) == control;
    if (!isInFront && !control->inherits("QLabel")) faults += "covered: " + name;
  }
  return faults;
}

TEST_F(DialogLooks, AreWholeInEveryFontStyleAndLanguage) {
  const QString pictures = qEnvironmentVariable("NV_PICTURES");  // names a folder for a picture of each
  const auto lookAt = [&](const std::string& look) {
    for (const auto& opening : openings) {
      const std::string name = opening.first + look;
      Show(opening.second, [&](QWidget& window) {
        if (!pictures.isEmpty()) window.grab().save(pictures + QString::fromStdString("/" + name + ".png"));
        EXPECT_EQ(Faults(window), "") << name;
      });
    }
  };
  for (const std::string language : {"English", "Deutsch", "Francais", "Nederlands"}) {
    const std::string texts = NV_SOURCE_FOLDER "/src/resources/catalogues/nvsupport." + language + ".txt";
    EXPECT_EQ(translations.LoadCatalogueFile(texts), language != "English") << texts;
    SetMessageCaption(std::string(Translate("Account Manager")));
    for (const char* family : {"DejaVu Sans", "Noto Sans", "Cantarell", "Liberation Sans", "Noto Sans CJK JP"}) {
      EXPECT_TRUE(QFontDatabase::hasFamily(QString::fromLatin1(family))) << family << " is not installed";
      for (const int points : {9, 11, 15}) {
        QApplication::setFont(QFont(QString::fromLatin1(family), points));
        for (const char* style : {"Fusion", "Windows"}) {
          QApplication::setStyle(QString::fromLatin1(style));
          lookAt("." + language + "." + family + "." + std::to_string(points) + "." + style);
        }
      }
    }
  }
}

}  // namespace
}  // namespace nvsupport
