// The library's dialogs as they look in every shipped language, in a host's QApplication.
#include <gtest/gtest.h>

#include <QAccessible>
#include <QApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QTimer>
#include <filesystem>
#include <functional>
#include <utility>
#include <vector>

#include "language/translation_catalogue.h"
#include "resources/resource_ids.h"
#include "ui/dialog.h"

namespace nvsupport {
namespace {

struct Form {
  std::uint32_t id;
  const char* name;
};

constexpr Form forms[] = {
    {IDD_CREATE_ACCOUNT, "create_account"}, {IDD_SIGN_IN, "sign_in"}, {IDD_COMPUTER_NAME, "computer_name"}};

class DialogTexts : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    static int argumentCount = 1;
    static char program[] = "dialogs";
    static char* arguments[] = {program, nullptr};
    application = new QApplication(argumentCount, arguments);
    QApplication::setFont(QFont(QStringLiteral("DejaVu Sans"), 9));
  }
  static void TearDownTestSuite() { delete application; }

  // Runs a dialog, hands its window to `look` and ends it.
  static void Show(std::uint32_t id, const std::function<void(QWidget&)>& look) {
    QTimer user;
    user.setSingleShot(true);
    QObject::connect(&user, &QTimer::timeout, [&look] {
      QWidget* window = QApplication::activeModalWidget();
      ASSERT_NE(window, nullptr);
      look(*window);
      QKeyEvent escape(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
      QCoreApplication::sendEvent(window, &escape);
    });
    user.start(0);
    EXPECT_EQ(Dialog(id).run(nullptr), IDCANCEL);
  }

  static QApplication* application;
};
QApplication* DialogTexts::application = nullptr;

// Labels may reach into the room of a neighbour that they leave empty; what is clicked may not.
void ExpectApart(const QWidget& window, const std::string& where) {
  const QList<QWidget*> controls = window.findChildren<QWidget*>(Qt::FindDirectChildrenOnly);
  for (const QWidget* one : controls) {
    for (const QWidget* other : controls) {
      if (one == other || qobject_cast<const QLabel*>(one) != nullptr ||
          qobject_cast<const QLabel*>(other) != nullptr) {
        continue;
      }
      EXPECT_FALSE(one->geometry().intersects(other->geometry()))
          << where << ": " << one->objectName().toStdString() << " and " << other->objectName().toStdString();
    }
  }
}

void ExpectFit(const QWidget& window, const std::string& where) {
  for (const QWidget* control : window.findChildren<QWidget*>()) {
    EXPECT_TRUE(control->toolTip().isEmpty()) << where << ": " << control->toolTip().toStdString();
  }
}

TEST_F(DialogTexts, FitTheirControlsInEveryShippedLanguage) {
  ASSERT_EQ(QFontInfo(QApplication::font()).family(), QStringLiteral("DejaVu Sans"));
  // English first, while no catalogue is loaded.
  std::vector<std::pair<std::string, std::string>> catalogues{{"English", ""}};
  for (const auto& file : std::filesystem::directory_iterator(NV_SOURCE_FOLDER "/src/resources/catalogues")) {
    if (file.path().extension() != ".txt" || file.path().filename() == "CMakeLists.txt") continue;
    catalogues.emplace_back(file.path().stem().extension().string().substr(1), file.path().string());
  }
  EXPECT_GT(catalogues.size(), 1u);
  for (const auto& [language, path] : catalogues) {
    EXPECT_TRUE(path.empty() || translations.LoadCatalogueFile(path));
    for (const Form& form : forms) {
      const std::string name = std::string(form.name) + "." + language;
      Show(form.id, [&name](QWidget& window) {
        ExpectFit(window, name);
        ExpectApart(window, name);
      });
    }
  }
}

TEST_F(DialogTexts, ThatDoNotFitAreToldByAToolTip) {
  class Crowded final : public Dialog {
   public:
    Crowded() : Dialog(IDD_COMPUTER_NAME) {}
    INT_PTR onInitDialog(WPARAM, LPARAM) override {
      setItemText(IDC_HELP_PAGE, "A &text that is far too long <b>here</b>");
      return 1;
    }
  };
  QTimer user;
  user.setSingleShot(true);
  QObject::connect(&user, &QTimer::timeout, [] {
    QWidget* window = QApplication::activeModalWidget();
    EXPECT_EQ(window->findChild<QWidget*>(QString::number(IDC_HELP_PAGE))->toolTip(),
              QStringLiteral("A text that is far too long &lt;b&gt;here&lt;/b&gt;"));
    window->close();
  });
  user.start(0);
  EXPECT_EQ(Crowded().run(nullptr), IDCANCEL);
}

TEST_F(DialogTexts, NameEveryEditForAssistiveTools) {
  for (const Form& form : forms) {
    Show(form.id, [](QWidget& window) {
      EXPECT_EQ(QAccessible::queryAccessibleInterface(&window)->text(QAccessible::Name), window.windowTitle());
      for (QLineEdit* edit : window.findChildren<QLineEdit*>()) {
        EXPECT_FALSE(QAccessible::queryAccessibleInterface(edit)->text(QAccessible::Name).isEmpty())
            << edit->objectName().toStdString();
      }
    });
  }
}

}  // namespace
}  // namespace nvsupport
