// The window's description: every widget that the program looks up is there with its class, and the window is one that
// a person can work with, by mouse, by keyboard, and without having read anything.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <gtkmm/builder.h>
#include <gtkmm/drawingarea.h>
#include <gtkmm/icontheme.h>
#include <gtkmm/main.h>
#include <gtkmm/menu.h>
#include <gtkmm/menubar.h>
#include <gtkmm/menuitem.h>
#include <gtkmm/menushell.h>
#include <gtkmm/radiotoolbutton.h>
#include <gtkmm/scrolledwindow.h>
#include <gtkmm/separatormenuitem.h>
#include <gtkmm/toolbar.h>
#include <gtkmm/viewport.h>
#include <gtkmm/window.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <set>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "Window.h"
#include "common/Folder.h"

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

const std::string description = KLV_SOURCE_DIR "/IHM.glade";

void settle() {
    while (Gtk::Main::events_pending()) Gtk::Main::iteration();
}

/// The letter behind the underscore of a label, 0 when it has none.
gunichar mnemonicOf(const Glib::ustring& label) {
    const auto underscore = label.find('_');
    return underscore == Glib::ustring::npos ? 0 : Glib::Unicode::tolower(label.at(underscore + 1));
}

class Description : public testing::Test {
protected:
    Description() : window(get<Gtk::Window>("window1")) {}
    ~Description() override { delete window; }

    template <class Widget>
    Widget* get(const Glib::ustring& id) {
        Widget* widget = nullptr;
        builder->get_widget(id, widget);
        if (widget == nullptr) throw std::runtime_error("no widget " + id.raw());
        return widget;
    }

    /// The items of every menu, separators left out.
    std::vector<std::vector<Gtk::MenuItem*>> menus() {
        std::vector<std::vector<Gtk::MenuItem*>> found{itemsOf(*get<Gtk::MenuBar>("menubar1"))};
        const std::vector<Gtk::MenuItem*> titles = found.front();
        for (Gtk::MenuItem* title : titles) found.push_back(itemsOf(*title->get_submenu()));
        return found;
    }

    /// The tools, separators left out.
    std::vector<Gtk::ToolButton*> tools() {
        std::vector<Gtk::ToolButton*> found;
        for (Gtk::Widget* child : get<Gtk::Toolbar>("toolbar1")->get_children()) {
            if (auto* tool = dynamic_cast<Gtk::ToolButton*>(child)) found.push_back(tool);
        }
        return found;
    }

    static std::vector<Gtk::MenuItem*> itemsOf(Gtk::MenuShell& shell) {
        std::vector<Gtk::MenuItem*> found;
        for (Gtk::Widget* child : shell.get_children()) {
            if (dynamic_cast<Gtk::SeparatorMenuItem*>(child) == nullptr)
                found.push_back(dynamic_cast<Gtk::MenuItem*>(child));
        }
        return found;
    }

    void show() {
        window->show();
        settle();
    }

    Glib::RefPtr<Gtk::Builder> builder = Gtk::Builder::create_from_file(description);
    Gtk::Window* window;
};

TEST(DescriptionAlone, HasEveryWidgetOfTheProgramUnderItsNameAndOfItsClass) {
    const std::map<std::string, std::string> classes{
        {"window1", "GtkWindow"},
        {"drawingarea1", "GtkDrawingArea"},
        {"toolButtonSelect", "GtkRadioToolButton"},
        {"toolButtonArc", "GtkRadioToolButton"},
        {"toolButtonNoeud", "GtkRadioToolButton"},
        {"toolNew", "GtkToolButton"},
        {"toolOpen", "GtkToolButton"},
        {"toolSave", "GtkToolButton"},
        {"menu_new", "GtkImageMenuItem"},
        {"menu_open", "GtkImageMenuItem"},
        {"menu_save", "GtkImageMenuItem"},
        {"menu_savein", "GtkImageMenuItem"},
        {"menu_quit", "GtkImageMenuItem"},
        {"menu_about", "GtkImageMenuItem"},
        {"menu_pref_bound", "GtkMenuItem"},
        {"menu_bound", "GtkMenuItem"},
        {"menu_bound_size", "GtkMenuItem"},
        {"menu_prefix_bound_size", "GtkMenuItem"},
        {"menu_modele_checking", "GtkMenuItem"},
        {"aboutdialog1", "GtkAboutDialog"},
    };
    // Loaded by the toolkit itself: the C++ loader makes classes of its own.
    GtkBuilder* plain = gtk_builder_new_from_file(description.c_str());
    for (const auto& [name, type] : classes) {
        GObject* object = gtk_builder_get_object(plain, name.c_str());
        ASSERT_NE(object, nullptr) << name;
        EXPECT_EQ(G_OBJECT_TYPE_NAME(object), type) << name;
    }
    gtk_widget_destroy(GTK_WIDGET(gtk_builder_get_object(plain, "window1")));
    g_object_unref(plain);
}

TEST_F(Description, OpensAWindowOfAUsefulSizeWithATitleAndAnIcon) {
    int width = 0;
    int height = 0;
    window->get_default_size(width, height);
    EXPECT_EQ(width, 1000);
    EXPECT_EQ(height, 700);
    EXPECT_EQ(window->get_title(), "KLV editor");
    EXPECT_EQ(window->get_icon_name(), "klv");
}

TEST_F(Description, ListsFileAnalysesAndHelp) {
    std::vector<std::vector<std::string>> labels;
    for (const auto& menu : menus()) {
        labels.emplace_back();
        for (const Gtk::MenuItem* item : menu) labels.back().push_back(item->get_label());
    }
    EXPECT_THAT(labels, ElementsAre(ElementsAre("_File", "_Analyses", "_Help"),
                                    ElementsAre("_New", "_Open…", "_Save", "Save _as…", "_Quit"),
                                    ElementsAre("Check _boundedness", "Compute bo_unds", "Check _prefix boundedness",
                                                "Compute p_refix bound", "Check a _formula…"),
                                    ElementsAre("_About")));
}

TEST_F(Description, GroupsTheThreeModesAndStartsInSelect) {
    auto* select = get<Gtk::RadioToolButton>("toolButtonSelect");
    std::set<void*> group;
    for (GSList* entry = gtk_radio_tool_button_get_group(select->gobj()); entry != nullptr; entry = entry->next)
        group.insert(gtk_widget_get_ancestor(GTK_WIDGET(entry->data), GTK_TYPE_RADIO_TOOL_BUTTON));

    auto* arc = get<Gtk::RadioToolButton>("toolButtonArc");
    auto* node = get<Gtk::RadioToolButton>("toolButtonNoeud");
    EXPECT_THAT(group, UnorderedElementsAre(select->gobj(), arc->gobj(), node->gobj()));
    EXPECT_TRUE(select->get_active());
    EXPECT_FALSE(arc->get_active());
    EXPECT_FALSE(node->get_active());

    node->set_active();
    EXPECT_FALSE(select->get_active());
    EXPECT_FALSE(arc->get_active());
}

TEST_F(Description, ExplainsEveryToolAndEveryMenuItemInATooltip) {
    EXPECT_EQ(tools().size(), 6U);
    for (const Gtk::ToolButton* tool : tools()) EXPECT_NE(tool->get_tooltip_text(), "") << tool->get_label();

    const auto all = menus();
    for (auto menu = all.begin() + 1; menu != all.end(); ++menu) {
        for (const Gtk::MenuItem* item : *menu) EXPECT_NE(item->get_tooltip_text(), "") << item->get_label();
    }
}

TEST_F(Description, GivesEveryItemOfAMenuAMnemonicOfItsOwn) {
    for (const auto& menu : menus()) {
        std::set<gunichar> letters{0};
        for (const Gtk::MenuItem* item : menu) {
            EXPECT_TRUE(item->get_use_underline()) << item->get_label();
            EXPECT_TRUE(letters.insert(mnemonicOf(item->get_label())).second) << item->get_label();
        }
    }
}

TEST_F(Description, GivesEveryToolAMnemonicOfItsOwnThatNoMenuTakes) {
    std::set<gunichar> letters{0};
    const auto titles = menus().front();
    for (const Gtk::MenuItem* title : titles) letters.insert(mnemonicOf(title->get_label()));
    for (const Gtk::ToolButton* tool : tools()) {
        EXPECT_TRUE(tool->get_use_underline()) << tool->get_label();
        EXPECT_TRUE(letters.insert(mnemonicOf(tool->get_label())).second) << tool->get_label();
    }
}

TEST_F(Description, AnswersTheUsualKeysOfAFileMenu) {
    const std::map<std::string, std::pair<guint, Gdk::ModifierType>> keys{
        {"menu_new", {GDK_KEY_n, Gdk::CONTROL_MASK}},
        {"menu_open", {GDK_KEY_o, Gdk::CONTROL_MASK}},
        {"menu_save", {GDK_KEY_s, Gdk::CONTROL_MASK}},
        {"menu_savein", {GDK_KEY_s, Gdk::CONTROL_MASK | Gdk::SHIFT_MASK}},
        {"menu_quit", {GDK_KEY_q, Gdk::CONTROL_MASK}},
    };
    std::vector<std::string> activated;
    for (const auto& [name, key] : keys) {
        get<Gtk::MenuItem>(name)->signal_activate().connect([&activated, n = name] { activated.push_back(n); });
    }
    show();
    for (const auto& [name, key] : keys) {
        activated.clear();
        EXPECT_TRUE(gtk_accel_groups_activate(G_OBJECT(window->gobj()), key.first, GdkModifierType(key.second)))
            << name;
        EXPECT_THAT(activated, ElementsAre(name));
    }
}

TEST_F(Description, ShowsTheDrawingInAScrolledWindowThatTakesTheRoomThatIsLeft) {
    auto* drawing = get<Gtk::DrawingArea>("drawingarea1");
    EXPECT_NE(dynamic_cast<Gtk::Viewport*>(drawing->get_parent()), nullptr);
    EXPECT_EQ(drawing->get_parent()->get_parent(), get<Gtk::ScrolledWindow>("scrolledwindow1"));

    show();
    EXPECT_EQ(drawing->get_allocated_width(), window->get_allocated_width() - 2);  // the frame of one pixel
    EXPECT_GT(drawing->get_allocated_height(), 580);
}

TEST_F(Description, PutsTheFocusOnTheDrawingSoThatNoKeyPressesATool) {
    show();
    EXPECT_EQ(window->get_focus(), get<Gtk::Widget>("drawingarea1"));
}

TEST_F(Description, ShowsTheHintOfTheActiveModeAlone) {
    const std::vector<std::string> hints{"hint_select", "hint_arc", "hint_noeud"};
    const std::vector<std::string> buttons{"toolButtonSelect", "toolButtonArc", "toolButtonNoeud"};
    for (std::size_t mode = 0; mode < buttons.size(); ++mode) {
        get<Gtk::RadioToolButton>(buttons[mode])->set_active();
        for (std::size_t hint = 0; hint < hints.size(); ++hint)
            EXPECT_EQ(get<Gtk::Widget>(hints[hint])->get_visible(), hint == mode) << hints[hint];
    }
}

// Where the program's own icons are not at hand, a loader still gets its window, and not a word of complaint.
TEST(DescriptionAlone, LoadsAndShowsWithoutTheProgramsIcons) {
    const Folder folder;
    std::filesystem::copy_file(description, folder / "IHM.glade");

    std::vector<std::string> complaints;
    const auto collect = [](const gchar*, GLogLevelFlags level, const gchar* message, gpointer into) {
        if (level & (G_LOG_LEVEL_ERROR | G_LOG_LEVEL_CRITICAL | G_LOG_LEVEL_WARNING))
            static_cast<std::vector<std::string>*>(into)->emplace_back(message);
    };
    const GLogFunc before = g_log_set_default_handler(collect, &complaints);
    {
        const auto builder = Gtk::Builder::create_from_file(folder / "IHM.glade");
        Gtk::Window* window = nullptr;
        builder->get_widget("window1", window);
        window->show();
        settle();
        EXPECT_TRUE(window->get_mapped());
        delete window;
    }
    g_log_set_default_handler(before, nullptr);
    EXPECT_THAT(complaints, IsEmpty());
}

TEST(ProgramIcons, AreFoundByEveryNameThatTheDescriptionUses) {
    std::ifstream file(description);
    const std::string text{std::istreambuf_iterator<char>(file), {}};
    const std::regex property(R"(icon-name">([^<]+)<)");
    std::set<std::string> names;
    for (std::sregex_iterator match(text.begin(), text.end(), property), end; match != end; ++match)
        names.insert((*match)[1]);
    EXPECT_THAT(names, Contains("klv-select-symbolic"));
    EXPECT_THAT(names, Contains("klv-arc-symbolic"));
    EXPECT_THAT(names, Contains("klv-node-symbolic"));

    const Window window(description);
    for (const std::string& name : names) {
        const Gtk::IconInfo icon = Gtk::IconTheme::get_default()->lookup_icon(name, 24);
        ASSERT_TRUE(icon) << name;
        EXPECT_EQ(icon.load_icon()->get_height(), 24) << name;
    }
}

}  // namespace
