// Starts the toolkit before the first test runs, but not to list the tests, which needs no display.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <gtkmm/main.h>

#include <memory>

namespace {

class Toolkit : public testing::Environment {
public:
    void SetUp() override { _main = std::make_unique<Gtk::Main>(); }
    void TearDown() override { _main.reset(); }

private:
    std::unique_ptr<Gtk::Main> _main;
};

}  // namespace

int main(int argc, char** argv) {
    testing::InitGoogleMock(&argc, argv);
    testing::AddGlobalTestEnvironment(new Toolkit);  // owned by the test framework
    return RUN_ALL_TESTS();
}
