#include <gtest/gtest.h>

#include "ui/base/appearance.h"
#include "ui/base/application.h"

namespace {

// What an event handler throws fails the test that caused it.
class TestApplication : public ui::Application {
  public:
    using ui::Application::Application;

  protected:
    void tell(const std::string& receiver, const std::string& what) override {
        ADD_FAILURE() << "an event handler of \"" << receiver << "\" has thrown: " << what;
    }
};

}  // namespace

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    ::testing::InitGoogleTest(&argc, argv);
    TestApplication application(argc, argv);
    ui::applyAppearance();
    QApplication::setQuitOnLastWindowClosed(false);
    return RUN_ALL_TESTS();
}
