// The frame of four bands around a central widget.
#include "EGD/PaternLayout.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <gtkmm/drawingarea.h>
#include <gtkmm/label.h>
#include <gtkmm/window.h>

#include <vector>

#include "Helpers.h"

namespace {

using testing::ElementsAre;

/// How a box holds a child.
struct Packing {
    explicit Packing(Gtk::Widget& child) {
        gboolean expands = FALSE;
        gboolean fills = FALSE;
        GtkPackType packed = GTK_PACK_END;
        auto* box = dynamic_cast<Gtk::Box*>(child.get_parent());
        gtk_box_query_child_packing(box->gobj(), child.gobj(), &expands, &fills, &padding, &packed);
        expand = expands != FALSE;
        fill = fills != FALSE;
        isAtStart = packed == GTK_PACK_START;
    }

    bool expand = false;
    bool fill = false;
    guint padding = 99;
    bool isAtStart = false;
};

class PaternLayout : public testing::Test {
protected:
    PaternLayout() : layout(centre) {}

    void show(int width, int height) {
        window.add(layout);
        window.set_default_size(width, height);
        window.show_all();
        while (Gtk::Main::events_pending()) Gtk::Main::iteration();
    }

    ~PaternLayout() override { window.remove(); }

    Gtk::Window window{Gtk::WINDOW_POPUP};
    Gtk::DrawingArea centre;
    EGD::PaternLayout layout;
};

TEST_F(PaternLayout, WithoutBandsShowsTheCentralWidgetAloneAtLeast200By150) {
    int width = 0;
    int height = 0;
    centre.get_size_request(width, height);
    EXPECT_EQ(width, 200);
    EXPECT_EQ(height, 150);
    EXPECT_TRUE(centre.get_visible());

    int minimum = 0;
    int natural = 0;
    layout.show();
    layout.get_preferred_width(minimum, natural);
    EXPECT_EQ(minimum, 200) << "empty bands take no room";
    layout.get_preferred_height(minimum, natural);
    EXPECT_EQ(minimum, 150);
}

TEST_F(PaternLayout, HoldsTheLeftBandTheMiddleColumnAndTheRightBandInThisOrder) {
    const auto columns = layout.get_children();
    ASSERT_EQ(columns.size(), 3U);
    EXPECT_EQ(columns[1], centre.get_parent());
    EXPECT_FALSE(layout.get_homogeneous());
    EXPECT_EQ(layout.get_spacing(), 0);
    for (Gtk::Widget* column : columns) {
        const Packing packing(*column);
        EXPECT_EQ(packing.expand, column == columns[1]);
        EXPECT_TRUE(packing.fill);
        EXPECT_EQ(packing.padding, 0U);
        EXPECT_TRUE(packing.isAtStart);
        auto* box = dynamic_cast<Gtk::VBox*>(column);
        ASSERT_NE(box, nullptr);
        EXPECT_FALSE(box->get_homogeneous());
        EXPECT_EQ(box->get_spacing(), 0);
    }
}

TEST_F(PaternLayout, HoldsTheTopBandTheCentralWidgetAndTheBottomBandInThisOrder) {
    auto* column = dynamic_cast<Gtk::VBox*>(centre.get_parent());
    ASSERT_NE(column, nullptr);
    const auto rows = column->get_children();
    ASSERT_EQ(rows.size(), 3U);
    EXPECT_EQ(rows[1], &centre);
    for (Gtk::Widget* row : rows) {
        const Packing packing(*row);
        EXPECT_EQ(packing.expand, row == &centre);
        EXPECT_TRUE(packing.fill);
        EXPECT_EQ(packing.padding, 0U);
        EXPECT_TRUE(packing.isAtStart);
    }
    EXPECT_NE(dynamic_cast<Gtk::HBox*>(rows[0]), nullptr);
    EXPECT_NE(dynamic_cast<Gtk::HBox*>(rows[2]), nullptr);
}

TEST_F(PaternLayout, LinesUpTheWidgetsOfABandInTheOrderAdded) {
    Gtk::Label left1("a"), left2("b"), right1("c"), right2("d"), top1("e"), top2("f"), bottom1("g"), bottom2("h");
    layout.addLeft(left1);
    layout.addLeft(left2);
    layout.addRight(right1);
    layout.addRight(right2);
    layout.addTop(top1);
    layout.addTop(top2);
    layout.addBottom(bottom1);
    layout.addBottom(bottom2);
    show(600, 400);

    const auto box = [](Gtk::Widget& w) { return w.get_allocation(); };
    EXPECT_LT(box(left1).get_y(), box(left2).get_y());
    EXPECT_LT(box(right1).get_y(), box(right2).get_y());
    EXPECT_LT(box(top1).get_x(), box(top2).get_x());
    EXPECT_LT(box(bottom1).get_x(), box(bottom2).get_x());

    EXPECT_LE(box(left1).get_x() + box(left1).get_width(), box(centre).get_x());
    EXPECT_LE(box(centre).get_x() + box(centre).get_width(), box(right1).get_x());
    EXPECT_LE(box(top1).get_y() + box(top1).get_height(), box(centre).get_y());
    EXPECT_LE(box(centre).get_y() + box(centre).get_height(), box(bottom1).get_y());
    for (Gtk::Widget* widget : std::vector<Gtk::Widget*>{&left1, &left2, &top1, &top2}) {
        EXPECT_TRUE(Packing(*widget).isAtStart);
    }
}

TEST_F(PaternLayout, GivesAllAdditionalRoomToTheCentralWidget) {
    Gtk::Label left("left");
    Gtk::Label top("top");
    layout.addLeft(left);
    layout.addTop(top);
    show(700, 500);
    int minimum = 0;
    int natural = 0;
    left.get_preferred_width(minimum, natural);
    EXPECT_EQ(left.get_allocated_width(), natural);
    EXPECT_EQ(centre.get_allocated_width(), 700 - natural);
    top.get_preferred_height(minimum, natural);
    EXPECT_EQ(top.get_allocated_height(), natural);
    EXPECT_EQ(centre.get_allocated_height(), 500 - natural);
}

TEST_F(PaternLayout, DoesNotOwnTheCentralWidget) {
    Gtk::DrawingArea outliving;
    {
        const EGD::PaternLayout around(outliving);
        EXPECT_NE(outliving.get_parent(), nullptr);
    }
    EXPECT_EQ(outliving.get_parent(), nullptr);
}

}  // namespace
