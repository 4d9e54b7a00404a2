// The toolkit as the tests start it.
#pragma once

#include <gtest/gtest.h>
#include <gtkmm/main.h>
#include <gtkmm/settings.h>

#include <cstdlib>
#include <memory>

/// The toolkit with the fonts and settings of the tests instead of the user's.
class Toolkit : public testing::Environment {
public:
    void SetUp() override {
        setenv("FONTCONFIG_FILE", KLV_SOURCE_DIR "/tests/common/fonts.conf", 1);
        setenv("GSETTINGS_BACKEND", "memory", 1);
        setenv("GTK_THEME", "Adwaita", 1);
        setenv("LC_ALL", "C.UTF-8", 1);
        setenv("NO_AT_BRIDGE", "1", 1);
        openDisplay();
        _toolkit = std::make_unique<Gtk::Main>();
        const auto settings = Gtk::Settings::get_default();
        settings->property_gtk_xft_antialias() = 1;
        settings->property_gtk_xft_hinting() = 0;
        settings->property_gtk_xft_hintstyle() = "hintnone";
        settings->property_gtk_xft_rgba() = "none";
    }

    void TearDown() override { _toolkit.reset(); }

private:
    /// A virtual display restarts when the last program leaves it, and turns away whoever comes meanwhile.
    static void openDisplay() {
        constexpr gulong microseconds = 20000;
        for (int attempt = 0; attempt < 100 && gtk_init_check(nullptr, nullptr) == FALSE; ++attempt) {
            g_usleep(microseconds);
        }
    }

    std::unique_ptr<Gtk::Main> _toolkit;
};
