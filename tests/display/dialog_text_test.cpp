// The library's dialogs as they look in every shipped language, in a host's QApplication.
#include <gtest/gtest.h>

#include <QAccessible>
#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QTimer>
#include <filesystem>
#include <functional>

#include "language/translation_catalogue.h"
#include "resources/resource_ids.h"
#include "ui/dialog.h"

namespace nvsupport {
namespace {

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

  // Runs a dialog, hands its window to `look` and closes it.
  static void Show(Dialog&& dialog, const std::function<void(QWidget&)>& look) {
    QTimer::singleShot(0, [&look] {
      QWidget* window = QApplication::activeModalWidget();
      ASSERT_NE(window, nullptr);
      look(*window);
      window->close();
    });
    EXPECT_EQ(dialog.run(nullptr), IDCANCEL);
  }

  static QApplication* application;
};
QApplication* DialogTexts::application = nullptr;

bool IsLabel(const QWidget* control) {
  return qobject_cast<const QLabel*>(control) != nullptr;
}

// Labels may reach into the room of a neighbour that they leave empty; what is clicked may not.
void ExpectApart(const QList<QWidget*>& controls) {
  for (const QWidget* one : controls) {
    for (const QWidget* other : controls) {
      if (one == other || IsLabel(one) || IsLabel(other)) continue;
      EXPECT_FALSE(one->geometry().intersects(other->geometry()))
          << one->objectName().toStdString() << " and " << other->objectName().toStdString();
    }
  }
}

void ExpectFitAndNamed(const QList<QWidget*>& controls) {
  for (QWidget* control : controls) {
    EXPECT_EQ(control->toolTip().toStdString(), "") << "a text that does not fit is also the tool tip";
    if (qobject_cast<QLineEdit*>(control) == nullptr) continue;
    EXPECT_FALSE(QAccessible::queryAccessibleInterface(control)->text(QAccessible::Name).isEmpty())
        << control->objectName().toStdString() << " has no name for assistive tools";
  }
}

TEST_F(DialogTexts, FitTheirControlsInEveryShippedLanguage) {
  ASSERT_EQ(QFontInfo(QApplication::font()).family(), QStringLiteral("DejaVu Sans"));
  std::vector<std::string> catalogues{""};  // English first, while none is loaded
  for (const auto& file : std::filesystem::directory_iterator(NV_SOURCE_FOLDER "/src/resources/catalogues")) {
    if (file.path().filename().string().starts_with("nvsupport.")) catalogues.push_back(file.path());
  }
  EXPECT_GT(catalogues.size(), 1u);
  for (const std::string& path : catalogues) {
    EXPECT_TRUE(path.empty() || translations.LoadCatalogueFile(path));
    for (const int id : {IDD_CREATE_ACCOUNT, IDD_SIGN_IN, IDD_COMPUTER_NAME}) {
      SCOPED_TRACE(path + " " + std::to_string(id));
      Show(Dialog(static_cast<std::uint32_t>(id)), [](const QWidget& window) {
        const auto controls = window.findChildren<QWidget*>(Qt::FindDirectChildrenOnly);
        ExpectFitAndNamed(controls);
        ExpectApart(controls);
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
  Show(Crowded(), [](const QWidget& window) {
    EXPECT_EQ(window.findChild<QWidget*>(QString::number(IDC_HELP_PAGE))->toolTip(),
              QStringLiteral("A text that is far too long &lt;b&gt;here&lt;/b&gt;"));
  });
}

}  // namespace
}  // namespace nvsupport
