// The canvas: its stack of drawings, what is told to whom on a press and in which order, picking, redraws, and the
// frame timer. Whoever is told something may change the stack at once.
#include "EGD/EasyDrawingArea.h"

#include <glibmm/main.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <functional>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "Helpers.h"

std::vector<EGD::Drawing*> EGD::EasyDrawingArea::*stackOfAnArea();

/// Nobody but the area sees its stack; an explicit instantiation may name a private member.
template <std::vector<EGD::Drawing*> EGD::EasyDrawingArea::*stack>
struct OpenStack {
    friend std::vector<EGD::Drawing*> EGD::EasyDrawingArea::*stackOfAnArea() { return stack; }
};
template struct OpenStack<&EGD::EasyDrawingArea::vpDrawing_>;

namespace {

using EGD::Drawing;
using testing::ElementsAre;
using testing::IsEmpty;

using Drawings = std::vector<Drawing*>;

/// Writes down the calls of the area's own handlers and of the paints.
class LoggingArea : public TestArea {
public:
    void buttonPressed(GdkEventButton* event, Drawings picked) override {
        log.push_back("area pressed");
        lastEvent = event;
        lastPicked = picked;
    }

    void buttonReleased(GdkEventButton* event, Drawings picked) override {
        log.push_back("area released");
        lastEvent = event;
        lastPicked = picked;
    }

    void mouseMoved(GdkEventMotion*, double dx, double dy) override {
        log.push_back("area moved");
        moves.emplace_back(dx, dy);
    }

    bool on_draw(const Cairo::RefPtr<Cairo::Context>& cr) override {
        log.push_back("painted");
        return TestArea::on_draw(cr);
    }

    std::vector<std::string> log;
    GdkEventButton* lastEvent = nullptr;
    Drawings lastPicked;
    std::vector<std::pair<double, double>> moves;
};

/// An area with three filled squares, one over the other, each of which covers (50, 50).
class ThreeSquares : public testing::Test {
protected:
    ThreeSquares() {
        for (Square* square : {bottom, middle, top}) area.add(filled(square));
        bottom->onPress = [this] { area.log.push_back("bottom pressed"); };
        middle->onPress = [this] { area.log.push_back("middle pressed"); };
        top->onPress = [this] { area.log.push_back("top pressed"); };
    }

    ~ThreeSquares() override { area.deleteAll(); }

    Drawings stack() { return area.underMouse(50, 50); }

    LoggingArea area;
    Square* bottom = new Square(50, 50, 40);
    Square* middle = new Square(50, 50, 30);
    Square* top = new Square(50, 50, 20);
};

/// Runs the main loop until `done`, at most for five seconds.
template <class Done>
void runUntil(Done done) {
    bool isLate = false;
    sigc::connection limit = Glib::signal_timeout().connect(
        [&] {
            isLate = true;
            return false;
        },
        5000);
    while (!isLate && !done()) Glib::MainContext::get_default()->iteration(true);
    limit.disconnect();
}

void runFor(unsigned int milliseconds) {
    bool isOver = false;
    Glib::signal_timeout().connect_once([&] { isOver = true; }, milliseconds);
    runUntil([&] { return isOver; });
}

// -- construction

TEST(Area, AsksForEveryKindOfEvent) {
    TestArea area;
    EXPECT_EQ(static_cast<unsigned int>(area.get_events()), 0xFFFFFEU);
}

TEST(Area, IsBuiltFromAnInterfaceDescription) {
    const auto builder = Gtk::Builder::create_from_string(
        "<interface><object class='GtkWindow' id='window'>"
        "<child><object class='GtkDrawingArea' id='area'/></child></object></interface>");
    TestArea* area = nullptr;
    builder->get_widget_derived("area", area);
    ASSERT_NE(area, nullptr);
    EXPECT_EQ(static_cast<unsigned int>(area->get_events()), 0xFFFFFEU);
    EXPECT_EQ(Picture::of(*area, 10, 10).at(5, 5), white);
    auto* square = filled(new Square(5, 5, 4));
    area->add(square);
    EXPECT_THAT(area->underMouse(5, 5), ElementsAre(square));

    Gtk::Window* window = nullptr;
    builder->get_widget("window", window);
    area->deleteAll();
    delete area;
    delete window;
}

TEST(Area, IsWhiteUnlessAnotherBackgroundIsSet) {
    TestArea area;
    EXPECT_TRUE(Picture::of(area, 10, 10).isBlank());
    area.setBackGroundColor(255, 102, 0);
    EXPECT_EQ(Picture::of(area, 10, 10).at(0, 0), (Pixel{255, 102, 0}));
    EXPECT_EQ(Picture::of(area, 10, 10).at(9, 9), (Pixel{255, 102, 0}));
}

TEST(Area, HasItsPickPointAtTheOriginUntilSomethingIsPicked) {
    TestArea area;
    EXPECT_EQ(area.getPickX(), 0);
    EXPECT_EQ(area.getPickY(), 0);
    area.setPick(3.5, -7);
    EXPECT_EQ(area.getPickX(), 3.5);
    EXPECT_EQ(area.getPickY(), -7);
    area.underMouse(8, 9);
    EXPECT_EQ(area.getPickX(), 8);
    EXPECT_EQ(area.getPickY(), 9);
}

TEST(Area, TakesEventsThatAreReplayed) {
    EGD::EasyDrawingArea area;
    Square square(5, 5, 4);
    area.add(filled(&square));
    auto press = buttonEvent(5, 5);
    auto release = buttonEvent(5, 5, GDK_BUTTON_RELEASE);
    auto motion = motionEvent(5, 5);
    int moves = 0;
    area.signal_mouseMoved().connect([&](GdkEventMotion*, double, double) { ++moves; });
    EXPECT_FALSE(area.on_button_press_event(&press));
    EXPECT_FALSE(area.on_button_release_event(&release));
    EXPECT_FALSE(area.on_motion_notify_event(&motion));
    EXPECT_FALSE(area.on_draw(Picture(10, 10).context()));
    EXPECT_THAT(square.pressed, ElementsAre(&press));
    EXPECT_THAT(square.released, ElementsAre(&release));
    EXPECT_EQ(moves, 1);
    EXPECT_EQ(square.paints, 3) << "two picks and a paint";
}

TEST(Area, IgnoresPressesReleasesAndMotionsByDefault) {
    TestArea area;
    Square square(5, 5, 4);
    area.add(filled(&square));
    auto press = buttonEvent(5, 5);
    auto motion = motionEvent(5, 5);
    area.EasyDrawingArea::buttonPressed(&press, {&square});
    area.EasyDrawingArea::buttonReleased(&press, {&square});
    area.EasyDrawingArea::mouseMoved(&motion, 1, 2);
    EXPECT_THAT(area.underMouse(5, 5), ElementsAre(&square));
    EXPECT_EQ(square.getPosX(), 5);
}

// -- the stack

TEST(AreaStack, AddReturnsTheDrawingAndBecomesItsArea) {
    TestArea area;
    Square square(0, 0, 10);
    EXPECT_EQ(area.add(&square), &square);
    EXPECT_EQ(square.getArea(), &area);
}

TEST(AreaStack, PaintsLaterDrawingsOverEarlierOnes) {
    TestArea area;
    Square below(50, 50, 40);
    Square above(60, 60, 40);
    below.setColorIn(255, 0, 0, 255);
    above.setColorIn(0, 255, 0, 255);
    area.add(&below);
    area.add(&above);
    const Picture picture = Picture::of(area, 100, 100);
    EXPECT_EQ(picture.at(55, 55), (Pixel{0, 255, 0}));
    EXPECT_EQ(picture.at(35, 35), (Pixel{255, 0, 0}));
}

TEST(AreaStack, IsPaintedOverTheBackground) {
    TestArea area;
    area.setBackGroundColor(0, 0, 255);
    Square square(50, 50, 40);
    square.setColorIn(255, 0, 0, 255);
    area.add(&square);
    const Picture picture = Picture::of(area, 100, 100);
    EXPECT_EQ(picture.at(50, 50), (Pixel{255, 0, 0}));
    EXPECT_EQ(picture.at(5, 5), (Pixel{0, 0, 255}));
}

TEST(AreaStack, DrawsTheAreaWithoutTakingTheEvent) {
    TestArea area;
    EXPECT_FALSE(area.on_draw(Picture(10, 10).context()));
}

TEST(AreaStack, HoldsADrawingAsOftenAsItWasAdded) {
    TestArea area;
    Square square(50, 50, 40);
    square.setColorIn(255, 0, 0, 50);
    area.add(&square);
    area.add(&square);
    const Picture picture = Picture::of(area, 100, 100);
    EXPECT_EQ(square.paints, 2);
    EXPECT_LT(picture.at(50, 50).g, 205) << "painted twice, one veil over the other";
    EXPECT_THAT(area.underMouse(50, 50), ElementsAre(&square, &square));

    auto event = buttonEvent(50, 50);
    area.on_button_press_event(&event);
    EXPECT_EQ(square.pressed.size(), 2U);

    area.remove(&square);
    EXPECT_THAT(area.underMouse(50, 50), IsEmpty()) << "one removal takes both entries out";
}

TEST(AreaStack, RemovesEveryEntryOfADrawingAmongOthers) {
    TestArea area;
    Square a(50, 50, 40);
    Square b(50, 50, 40);
    for (Square* square : {&a, &a, &b, &a, &b, &a, &a}) area.add(filled(square));
    area.remove(&a);
    EXPECT_THAT(area.underMouse(50, 50), ElementsAre(&b, &b));
}

TEST(AreaStack, HoldsItsDrawingsInPaintOrderAndNothingElse) {
    TestArea area;
    const Drawings& stack = area.*stackOfAnArea();
    Square a(50, 50, 40);
    Square b(50, 50, 40);
    Square c(50, 50, 40);
    for (Square* square : {&a, &b, &c, &a}) area.add(square);
    EXPECT_THAT(stack, ElementsAre(&a, &b, &c, &a));
    area.remove(&b);
    EXPECT_THAT(stack, ElementsAre(&a, &c, &a));
    area.remove(&a);
    EXPECT_THAT(stack, ElementsAre(&c));

    b.onPaint = [&] { area.remove(&c); };
    area.add(&b);
    Picture::of(area, 10, 10);
    EXPECT_THAT(stack, ElementsAre(&b)) << "also after one has left during a paint";
    area.removeAll();
    EXPECT_THAT(stack, IsEmpty());
}

TEST(AreaStack, IgnoresTheRemovalOfADrawingItDoesNotHold) {
    TestArea area;
    Square here(50, 50, 40);
    Square elsewhere(50, 50, 40);
    area.add(filled(&here));
    area.remove(&elsewhere);
    EXPECT_THAT(area.underMouse(50, 50), ElementsAre(&here));
}

TEST_F(ThreeSquares, KeepTheirOrderWhenOneIsRemovedAndComeBackOnTop) {
    area.remove(middle);
    EXPECT_THAT(stack(), ElementsAre(bottom, top));
    area.remove(bottom);
    EXPECT_THAT(stack(), ElementsAre(top));
    area.add(bottom);
    area.add(middle);
    EXPECT_THAT(stack(), ElementsAre(top, bottom, middle));
}

TEST(AreaStack, KeepsTheRemovedDrawingsLinkToTheArea) {
    TestArea area;
    OnScreen screen(area);
    Square square(50, 50, 40);
    area.add(&square);
    area.remove(&square);
    screen.takeRequestedRedraw();
    EXPECT_EQ(square.getArea(), &area);
    square.move(1, 1);
    EXPECT_TRUE(screen.isRedrawRequested());
}

TEST(AreaStack, EmptiedByRemoveAllDestroysNothingAndKeepsTheLinks) {
    TestArea area;
    OnScreen screen(area);
    Square square(50, 50, 40);
    Square other(50, 50, 40);
    area.add(filled(&square));
    area.add(filled(&other));
    Count deletions(square.signal_deleted());
    screen.takeRequestedRedraw();

    area.removeAll();
    EXPECT_FALSE(screen.isRedrawRequested());
    EXPECT_EQ(deletions, 0);
    EXPECT_THAT(area.underMouse(50, 50), IsEmpty());
    EXPECT_EQ(square.getArea(), &area);
    square.setWidthLine(2);
    EXPECT_TRUE(screen.isRedrawRequested());
}

TEST(AreaStack, EmptiedByRemoveAllCanBeFilledAgain) {
    TestArea area;
    Square square(50, 50, 40);
    Square other(50, 50, 40);
    area.add(filled(&square));
    area.add(filled(&other));
    area.removeAll();
    area.add(&other);
    EXPECT_THAT(area.underMouse(50, 50), ElementsAre(&other));
    area.remove(&square);
    EXPECT_THAT(area.underMouse(50, 50), ElementsAre(&other));
}

TEST(AreaStack, DestroyedByDeleteAllGoesFromTheTop) {
    TestArea area;
    std::vector<std::string> ends;
    for (const char* name : {"first", "second", "third"}) {
        area.add(new Square(50, 50, 40))->signal_deleted().connect([&ends, name] { ends.push_back(name); });
    }
    area.deleteAll();
    EXPECT_THAT(ends, ElementsAre("third", "second", "first"));
    EXPECT_THAT(area.underMouse(50, 50), IsEmpty());
}

TEST(AreaStack, DestroyedByDeleteAllEndsADrawingAddedTwiceOnce) {
    TestArea area;
    auto* twice = filled(new Square(50, 50, 40));
    int ends = 0;
    twice->signal_deleted().connect([&] { ++ends; });
    area.add(twice);
    area.add(new Square(50, 50, 40));
    area.add(twice);
    area.deleteAll();
    EXPECT_EQ(ends, 1);
    EXPECT_THAT(area.underMouse(50, 50), IsEmpty());
}

TEST(AreaStack, DestroyedByDeleteAllMayLoseAndGainDrawingsMeanwhile) {
    TestArea area;
    auto* bottom = filled(new Square(50, 50, 40));
    auto* companion = filled(new Square(50, 50, 40));
    auto* top = filled(new Square(50, 50, 40));
    for (Square* square : {bottom, companion, top}) area.add(square);
    int ends = 0;
    const auto end = [&] { ++ends; };
    bottom->signal_deleted().connect(end);
    companion->signal_deleted().connect(end);
    top->signal_deleted().connect([&] {
        delete companion;
        area.add(filled(new Square(50, 50, 40)))->signal_deleted().connect(end);
    });
    area.deleteAll();
    EXPECT_EQ(ends, 3);
    EXPECT_THAT(area.underMouse(50, 50), IsEmpty());
}

TEST(AreaStack, IsLeftByADrawingThatIsDestroyed) {
    TestArea area;
    Square stays(50, 50, 40);
    area.add(filled(&stays));
    {
        Square goes(50, 50, 40);
        area.add(filled(&goes));
        ASSERT_EQ(area.underMouse(50, 50).size(), 2U);
    }
    EXPECT_THAT(area.underMouse(50, 50), ElementsAre(&stays));
}

TEST(AreaStack, BelongsToTheAreaThatAddedADrawingLast) {
    TestArea first;
    TestArea second;
    {
        Square square(50, 50, 40);
        first.add(filled(&square));
        second.add(&square);
        EXPECT_EQ(square.getArea(), &second);
        first.remove(&square);
    }
    EXPECT_THAT(first.underMouse(50, 50), IsEmpty());
    EXPECT_THAT(second.underMouse(50, 50), IsEmpty());
}

TEST(AreaStack, IsNotDestroyedWithTheArea) {
    auto area = std::make_unique<TestArea>();
    Square square(50, 50, 40);
    Count deletions(square.signal_deleted());
    area->add(&square);
    area.reset();
    EXPECT_EQ(deletions, 0);
    square.setArea(nullptr);  // drawings that outlive their area must forget it
}

TEST(AreaStack, FollowsAPlainListThroughRandomChanges) {
    TestArea area;
    std::mt19937 random(20240607);
    const auto below = [&](std::size_t n) { return std::uniform_int_distribution<std::size_t>(0, n - 1)(random); };

    std::vector<std::unique_ptr<Square>> squares;
    Drawings expected;
    const auto forget = [&](const Drawing* d) { std::erase(expected, d); };
    for (int step = 0; step < 1500; ++step) {
        const auto kind = below(100);
        if (kind < 45 || squares.empty()) {
            squares.emplace_back(filled(new Square(50, 50, 10)));
            area.add(squares.back().get());
            expected.push_back(squares.back().get());
        } else if (kind < 55) {
            Square* again = squares[below(squares.size())].get();
            area.add(again);
            expected.push_back(again);
        } else if (kind < 75) {
            Square* removed = squares[below(squares.size())].get();
            area.remove(removed);
            forget(removed);
        } else if (kind < 99) {
            const auto i = below(squares.size());
            forget(squares[i].get());
            squares.erase(squares.begin() + static_cast<std::ptrdiff_t>(i));
        } else {
            area.removeAll();
            expected.clear();
        }
        ASSERT_EQ(area.underMouse(50, 50), expected) << "after step " << step;
    }
}

// -- picking

TEST(AreaPick, ReportsEveryDrawingUnderThePointFromTheBottom) {
    TestArea area;
    Square left(40, 50, 40);
    Square right(60, 50, 40);
    Square away(150, 50, 40);
    for (Square* square : {&left, &away, &right}) area.add(filled(square));
    EXPECT_THAT(area.underMouse(50, 50), ElementsAre(&left, &right));
    EXPECT_THAT(area.underMouse(25, 50), ElementsAre(&left));
    EXPECT_THAT(area.underMouse(100, 50), IsEmpty());
    EXPECT_THAT(area.underMouse(150, 50), ElementsAre(&away));
}

TEST(AreaPick, AsksTheDrawingsThemselves) {
    class AlwaysPicked : public Square {
    public:
        using Square::Square;
        bool isPicked() override { return true; }
    };
    TestArea area;
    AlwaysPicked drawing(50, 50, 10);
    area.add(&drawing);
    EXPECT_THAT(area.underMouse(500, 500), ElementsAre(&drawing));
}

TEST(AreaPick, PaintsOnceOffScreenThroughTheAreasOwnPaint) {
    LoggingArea area;
    OnScreen screen(area);
    Square square(50, 50, 40);
    area.add(filled(&square));
    screen.takeRequestedRedraw();
    area.log.clear();
    area.setPick(50, 50);
    EXPECT_THAT(area.log, ElementsAre("painted"));
    EXPECT_EQ(square.paints, 1);
    EXPECT_FALSE(screen.isRedrawRequested());
}

TEST(AreaPick, FindsDrawingsOutsideWhatIsShown) {
    TestArea area;
    Square far(-5000, 90000, 40);
    area.add(filled(&far));
    EXPECT_THAT(area.underMouse(-5000, 90000), ElementsAre(&far));
    EXPECT_THAT(area.underMouse(-5030, 90000), IsEmpty());
}

TEST(AreaPick, IsRefreshedByEveryOrdinaryPaint) {
    TestArea area;
    Square square(50, 50, 40);
    area.add(filled(&square));
    area.setPick(50, 50);
    ASSERT_TRUE(square.isPicked());
    square.setPos(150, 50);
    Picture::of(area, 200, 100);
    EXPECT_FALSE(square.isPicked());
    square.setPos(50, 50);
    Picture::of(area, 200, 100);
    EXPECT_TRUE(square.isPicked());
}

TEST(AreaPick, StandsWhereTheWidgetIsPaintedAnywhereOnASurface) {
    TestArea area;
    Square square(50, 50, 40);
    Square other(50, 110, 40);
    area.add(filled(&square));
    area.add(filled(&other));
    area.setPick(50, 50);

    Picture picture(200, 200);
    picture.context()->translate(0, 60);
    area.on_draw(picture.context());
    EXPECT_TRUE(square.isPicked());
    EXPECT_FALSE(other.isPicked());
    EXPECT_EQ(area.getPickX(), 50);
    EXPECT_EQ(area.getPickY(), 50);
}

TEST(AreaTranslate, ReplacesTheOriginReturnsTheAreaAndMovesNothing) {
    TestArea area;
    Square square(50, 50, 40);
    area.add(filled(&square));
    const Picture before = Picture::of(area, 100, 100);
    EXPECT_EQ(area.translate(30, 30), &area);
    EXPECT_EQ(area.translate(10, 5), &area);
    EXPECT_TRUE(looksLike(Picture::of(area, 100, 100), before));
    EXPECT_THAT(area.underMouse(50, 50), ElementsAre(&square));
    EXPECT_THAT(area.underMouse(85, 85), IsEmpty());
}

// -- presses and releases

TEST(AreaPress, WithoutDrawingsReachesTheAreaWithAnEmptyList) {
    LoggingArea area;
    auto event = buttonEvent(5, 5);
    EXPECT_FALSE(area.on_button_press_event(&event));
    EXPECT_THAT(area.log, ElementsAre("painted", "area pressed"));
    EXPECT_EQ(area.lastEvent, &event);
    EXPECT_THAT(area.lastPicked, IsEmpty());
}

TEST_F(ThreeSquares, ReceiveAPressBottomMostFirstAndBeforeTheArea) {
    auto event = buttonEvent(50, 50);
    EXPECT_FALSE(area.on_button_press_event(&event)) << "the press goes on to further handlers";
    EXPECT_THAT(area.log, ElementsAre("painted", "bottom pressed", "middle pressed", "top pressed", "area pressed"));
    EXPECT_THAT(area.lastPicked, ElementsAre(bottom, middle, top));
    EXPECT_THAT(middle->pressed, ElementsAre(&event));
    EXPECT_THAT(middle->released, IsEmpty());
    EXPECT_EQ(area.getPickX(), 50);
}

TEST_F(ThreeSquares, ReceiveAPressOnlyWhereTheyLie) {
    auto event = buttonEvent(33, 50);
    area.on_button_press_event(&event);
    EXPECT_THAT(area.log, ElementsAre("painted", "bottom pressed", "area pressed"));
    EXPECT_THAT(area.lastPicked, ElementsAre(bottom));
}

TEST_F(ThreeSquares, ReceiveAReleaseBottomMostFirstAndBeforeTheArea) {
    bottom->onRelease = [this] { area.log.push_back("bottom released"); };
    top->onRelease = [this] { area.log.push_back("top released"); };
    auto event = buttonEvent(50, 50, GDK_BUTTON_RELEASE);
    EXPECT_FALSE(area.on_button_release_event(&event));
    EXPECT_THAT(area.log, ElementsAre("painted", "bottom released", "top released", "area released"));
    EXPECT_EQ(area.lastEvent, &event);
    EXPECT_THAT(area.lastPicked, ElementsAre(bottom, middle, top));
    EXPECT_THAT(middle->released, ElementsAre(&event));
    EXPECT_THAT(middle->pressed, IsEmpty());
}

TEST_F(ThreeSquares, ReceiveTheToolkitsEventsBeforeHandlersConnectedFromOutside) {
    area.signal_button_press_event().connect([this](GdkEventButton*) {
        area.log.push_back("connected");
        return true;
    });
    area.signal_button_press_event().connect([this](GdkEventButton*) {
        area.log.push_back("never reached");
        return false;
    });
    EXPECT_TRUE(sendButton(area, 50, 50)) << "a handler that returns true ends the chain";
    EXPECT_THAT(area.log,
                ElementsAre("painted", "bottom pressed", "middle pressed", "top pressed", "area pressed", "connected"));
}

TEST_F(ThreeSquares, ReceiveNothingWhileInvisible) {
    middle->setVisible(false);
    auto event = buttonEvent(50, 50);
    area.on_button_press_event(&event);
    EXPECT_THAT(area.lastPicked, ElementsAre(bottom, top));
}

TEST_F(ThreeSquares, MayDestroyALaterOneInAPress) {
    bottom->onPress = [this] { delete top; };
    auto event = buttonEvent(50, 50);
    area.on_button_press_event(&event);
    EXPECT_THAT(area.lastPicked, ElementsAre(bottom, middle));
    EXPECT_THAT(stack(), ElementsAre(bottom, middle));
}

TEST_F(ThreeSquares, MayDestroyAnEarlierOneInAPress) {
    top->onPress = [this] { delete bottom; };
    auto event = buttonEvent(50, 50);
    area.on_button_press_event(&event);
    EXPECT_THAT(area.lastPicked, ElementsAre(bottom, middle, top)) << "the list is the one collected before";
    EXPECT_THAT(stack(), ElementsAre(middle, top));
}

TEST_F(ThreeSquares, MayDestroyThemselvesInAPress) {
    for (Square* square : {bottom, middle, top}) square->onPress = [square] { delete square; };
    auto event = buttonEvent(50, 50);
    area.on_button_press_event(&event);
    EXPECT_EQ(area.lastPicked.size(), 3U);
    EXPECT_THAT(stack(), IsEmpty());
}

TEST_F(ThreeSquares, MayDestroyThemselvesInARelease) {
    for (Square* square : {bottom, middle, top}) square->onRelease = [square] { delete square; };
    auto event = buttonEvent(50, 50, GDK_BUTTON_RELEASE);
    area.on_button_release_event(&event);
    EXPECT_EQ(area.lastPicked.size(), 3U);
    EXPECT_THAT(stack(), IsEmpty());
}

TEST_F(ThreeSquares, MayRemoveOneInAPressAndTheOthersAreAllToldOnce) {
    for (Square* removed : {bottom, middle, top}) {
        SCOPED_TRACE(removed == bottom ? "bottom" : removed == middle ? "middle" : "top");
        area.removeAll();
        for (Square* square : {bottom, middle, top}) {
            square->pressed.clear();
            square->onPress = nullptr;
            area.add(square);
        }
        middle->onPress = [&] { area.remove(removed); };
        auto event = buttonEvent(50, 50);
        area.on_button_press_event(&event);
        EXPECT_EQ(bottom->pressed.size(), 1U);
        EXPECT_EQ(middle->pressed.size(), 1U);
        EXPECT_EQ(top->pressed.size(), removed == top ? 0U : 1U);
    }
    area.removeAll();
    for (Square* square : {bottom, middle, top}) area.add(square);
}

TEST_F(ThreeSquares, MayAddOneInAPressThatDoesNotReceiveIt) {
    auto* added = filled(new Square(50, 50, 40));
    bottom->onPress = [&] { area.add(added); };
    auto event = buttonEvent(50, 50);
    area.on_button_press_event(&event);
    EXPECT_THAT(area.lastPicked, ElementsAre(bottom, middle, top));
    EXPECT_THAT(added->pressed, IsEmpty());
    EXPECT_THAT(stack(), ElementsAre(bottom, middle, top, added));
}

TEST_F(ThreeSquares, MayAllBeDestroyedByAPressOnOne) {
    middle->onPress = [this] { area.deleteAll(); };
    auto event = buttonEvent(50, 50);
    area.on_button_press_event(&event);
    EXPECT_EQ(area.lastPicked.size(), 2U) << "the top one was gone before its turn";
    EXPECT_THAT(stack(), IsEmpty());
}

TEST_F(ThreeSquares, MayAllBeReplacedByAPressOnOne) {
    auto* replacement = filled(new Square(50, 50, 40));
    middle->onPress = [&] {
        area.deleteAll();
        area.add(replacement);
    };
    auto event = buttonEvent(50, 50);
    area.on_button_press_event(&event);
    EXPECT_THAT(stack(), ElementsAre(replacement));
}

TEST_F(ThreeSquares, MayBePickedAndPaintedAgainInAPress) {
    bottom->onPress = [this] {
        Picture::of(area, 100, 100);
        area.underMouse(50, 50);
    };
    auto event = buttonEvent(50, 50);
    area.on_button_press_event(&event);
    EXPECT_THAT(area.lastPicked, ElementsAre(bottom, middle, top));
}

// -- changes of the stack during a paint

TEST_F(ThreeSquares, AreEachPaintedOnceWhenAnotherLeavesDuringThePaint) {
    for (Square* removed : {bottom, top}) {
        SCOPED_TRACE(removed == bottom ? "bottom" : "top");
        area.removeAll();
        for (Square* square : {bottom, middle, top}) {
            square->paints = 0;
            area.add(square);
        }
        middle->onPaint = [&] { area.remove(removed); };
        Picture::of(area, 100, 100);
        EXPECT_EQ(bottom->paints, 1);
        EXPECT_EQ(middle->paints, 1);
        EXPECT_EQ(top->paints, removed == top ? 0 : 1);
        middle->onPaint = nullptr;
    }
    area.add(top);
    area.add(bottom);
    area.remove(bottom);
    area.add(bottom);
}

TEST_F(ThreeSquares, ArePaintedTogetherWithOneThatComesDuringThePaint) {
    auto* added = new Square(50, 50, 10);
    bottom->onPaint = [&] {
        if (added->getArea() == nullptr) area.add(added);
    };
    Picture::of(area, 100, 100);
    EXPECT_EQ(added->paints, 1);
    EXPECT_EQ(top->paints, 1);
}

TEST_F(ThreeSquares, SurviveThatAllOthersAreDestroyedDuringThePaint) {
    middle->onPaint = [this] {
        middle->onPaint = nullptr;
        delete bottom;
        delete top;
    };
    Picture::of(area, 100, 100);
    EXPECT_EQ(middle->paints, 1);
    EXPECT_THAT(stack(), ElementsAre(middle));
}

// -- motion

TEST(AreaMotionDeathTest, StartsWithoutADisplacementOnceForTheWholeProgram) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");  // a new process, in which nothing has moved yet
    const auto firstMotions = [] {
        LoggingArea area;
        LoggingArea other;
        auto first = motionEvent(70, 80);
        auto second = motionEvent(75, 78);
        auto third = motionEvent(76, 79);
        area.on_motion_notify_event(&first);
        area.on_motion_notify_event(&second);
        other.on_motion_notify_event(&third);
        const bool isRight =
            area.moves == decltype(area.moves){{0, 0}, {5, -2}} && other.moves == decltype(other.moves){{1, 1}};
        std::_Exit(isRight ? 0 : 1);
    };
    EXPECT_EXIT(firstMotions(), testing::ExitedWithCode(0), "");
}

TEST(AreaMotion, IsTheDifferenceToThePreviousEvent) {
    LoggingArea area;
    auto first = motionEvent(10, 10);
    auto second = motionEvent(13.5, 6);
    auto third = motionEvent(13.5, 6);
    area.on_motion_notify_event(&first);
    area.moves.clear();
    area.on_motion_notify_event(&second);
    area.on_motion_notify_event(&third);
    EXPECT_THAT(area.moves, ElementsAre(testing::Pair(3.5, -4), testing::Pair(0, 0)));
}

TEST(AreaMotion, GoesOnFromOneAreaToTheNext) {
    LoggingArea left;
    LoggingArea right;
    auto first = motionEvent(10, 10);
    auto second = motionEvent(40, 20);
    left.on_motion_notify_event(&first);
    right.on_motion_notify_event(&second);
    EXPECT_THAT(right.moves, ElementsAre(testing::Pair(30, 10)));
}

TEST(AreaMotion, ReachesTheAreaThenTheSignalAndGoesOn) {
    LoggingArea area;
    GdkEventMotion* seen = nullptr;
    std::pair<double, double> by;
    area.signal_mouseMoved().connect([&](GdkEventMotion* event, double dx, double dy) {
        area.log.push_back("signal");
        seen = event;
        by = {dx, dy};
    });
    auto first = motionEvent(1, 1);
    auto second = motionEvent(4, 5);
    area.on_motion_notify_event(&first);
    area.log.clear();
    EXPECT_FALSE(area.on_motion_notify_event(&second));
    EXPECT_THAT(area.log, ElementsAre("area moved", "signal")) << "and nothing is painted to pick";
    EXPECT_EQ(seen, &second);
    EXPECT_THAT(by, testing::Pair(3, 4));
}

TEST(AreaMotion, ArrivesFromTheToolkit) {
    LoggingArea area;
    sendMotion(area, 1, 1);
    area.moves.clear();
    EXPECT_FALSE(sendMotion(area, 2, 4));
    EXPECT_THAT(area.moves, ElementsAre(testing::Pair(1, 3)));
}

// -- redraws

TEST(AreaRefresh, IsHarmlessBeforeTheWidgetIsRealised) {
    TestArea area;
    Square square(50, 50, 40);
    area.refresh(0, 0, 10, 10);
    area.refresh(&square);
    area.add(&square);
    EXPECT_FALSE(area.get_realized());
}

TEST(AreaRefresh, RequestsTheWholeWidgetWhateverTheArguments) {
    TestArea area;
    OnScreen screen(area);
    area.refresh(5, 5, 1, 1);
    EXPECT_TRUE(screen.isRedrawRequested());
    area.refresh(0, 0, 0, 0);
    EXPECT_TRUE(screen.isRedrawRequested());
    area.refresh(-10, 7, 1e9, -3);
    EXPECT_TRUE(screen.isRedrawRequested());
    Square square(50, 50, 40);
    area.refresh(&square);
    EXPECT_TRUE(screen.isRedrawRequested());
    area.refresh(nullptr);
    EXPECT_TRUE(screen.isRedrawRequested());
}

TEST(AreaRefresh, IsRequestedByAddingAndByRemoving) {
    TestArea area;
    OnScreen screen(area);
    Square square(50, 50, 40);
    area.add(&square);
    EXPECT_TRUE(screen.isRedrawRequested());
    area.remove(&square);
    EXPECT_TRUE(screen.isRedrawRequested());
}

TEST(AreaRefresh, IsNotRequestedByTheBackgroundOrTheOrigin) {
    TestArea area;
    OnScreen screen(area);
    area.setBackGroundColor(1, 2, 3);
    area.translate(1, 2);
    EXPECT_FALSE(screen.isRedrawRequested());
}

TEST(AreaRefresh, ReachesTheScreen) {
    LoggingArea area;
    OnScreen screen(area);
    area.log.clear();
    area.refresh(0, 0, 0, 0);
    runUntil([&] { return !area.log.empty(); });
    EXPECT_EQ(area.log.front(), "painted");
}

// -- the frame timer

TEST(AreaTimer, DoesNotRunUntilItIsStarted) {
    TestArea area;
    Square square(0, 0, 10);
    area.add(&square);
    square.addTranslation(100, 0, 1);
    runFor(60);
    EXPECT_EQ(square.getPosX(), 0);
    area.stop();  // stopping a stopped timer does nothing
}

TEST(AreaTimer, AdvancesEveryDrawingByAStepEvery17Milliseconds) {
    TestArea area;
    Square fast(0, 0, 10);
    Square slow(0, 0, 10);
    area.add(&fast);
    area.add(&slow);
    fast.addTranslation(100, 0, 10);
    slow.addTranslation(0, 10, 1);
    const auto begin = std::chrono::steady_clock::now();
    area.play();
    runUntil([&] { return fast.getPosX() >= 100; });
    const auto taken = std::chrono::steady_clock::now() - begin;
    area.stop();
    EXPECT_EQ(fast.getPosX(), 100);
    EXPECT_EQ(slow.getPosY(), 10) << "both take ten frames";
    EXPECT_GE(taken, std::chrono::milliseconds(10 * 17 - 10)) << "the clock of the loop counts in milliseconds";
}

TEST(AreaTimer, IsDueIn17MillisecondsAtTheDefaultPriority) {
    TestArea area;
    GSource* const last = g_idle_source_new();
    const guint lastId = g_source_attach(last, nullptr);  // sources are numbered one after the other
    g_source_destroy(last);
    g_source_unref(last);
    const gint64 before = g_get_monotonic_time();
    area.play();
    const gint64 after = g_get_monotonic_time();
    GSource* const timer = g_main_context_find_source_by_id(nullptr, lastId + 1);
    ASSERT_NE(timer, nullptr);
    EXPECT_GE(g_source_get_ready_time(timer), before + 17000);
    EXPECT_LE(g_source_get_ready_time(timer), after + 17000);
    EXPECT_EQ(g_source_get_priority(timer), G_PRIORITY_DEFAULT);
}

TEST(AreaTimer, AdvancesTheDrawingsInTheirOrderAndAsOftenAsTheyStandThere) {
    TestArea area;
    Square first(0, 0, 10);
    Square second(0, 0, 10);
    std::vector<std::string> order;
    area.add(&first);
    area.add(&second);
    area.add(&first);
    first.signal_updated().connect([&] { order.push_back("first"); });
    second.signal_updated().connect([&] { order.push_back("second"); });
    first.addTranslation(2, 0, 1);
    second.addTranslation(1, 0, 1);
    area.play();
    runUntil([&] { return order.size() >= 3; });
    area.stop();
    EXPECT_THAT(order, ElementsAre("first", "second", "first"));
}

TEST(AreaTimer, StartedTwiceIsStoppedByOneStop) {
    TestArea area;
    Square square(0, 0, 10);
    area.add(&square);
    square.addTranslation(1000, 0, 1);
    area.play();
    area.play();
    runUntil([&] { return square.getPosX() >= 2; });
    area.stop();
    const double stoppedAt = square.getPosX();
    runFor(60);
    EXPECT_EQ(square.getPosX(), stoppedAt);
}

TEST(AreaTimer, StartedTwiceAdvancesOnceAFrame) {
    TestArea area;
    Square square(0, 0, 10);
    area.add(&square);
    square.addTranslation(1000, 0, 1);
    const auto begin = std::chrono::steady_clock::now();
    area.play();
    area.play();
    runUntil([&] { return square.getPosX() >= 10; });
    EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(10 * 17 - 10));
    area.stop();
}

TEST(AreaTimer, CanBeStartedAgainAndGoesOnWhereItStopped) {
    TestArea area;
    Square square(0, 0, 10);
    area.add(&square);
    square.addTranslation(3, 0, 1);
    area.play();
    runUntil([&] { return square.getPosX() >= 1; });
    area.stop();
    area.play();
    runUntil([&] { return square.getPosX() >= 3; });
    area.stop();
    EXPECT_EQ(square.getPosX(), 3);
}

TEST(AreaTimer, GoesOnRedrawingWithoutAnyAnimation) {
    LoggingArea area;
    OnScreen screen(area);
    area.log.clear();
    area.play();
    runUntil([&] { return area.log.size() >= 3; });
    area.stop();
    EXPECT_GE(area.log.size(), 3U);
}

TEST(AreaTimer, StopsWithTheArea) {
    Square square(0, 0, 10);
    square.addTranslation(100, 0, 1);
    {
        TestArea area;
        area.add(&square);
        area.play();
    }
    runFor(60);
    EXPECT_EQ(square.getPosX(), 0);
    square.setArea(nullptr);
}

TEST(AreaTimer, LetsADrawingDestroyItsNeighboursInItsFrame) {
    TestArea area;
    Square traveller(0, 0, 10);
    auto* before = new Square(0, 0, 10);
    auto* after = new Square(0, 0, 10);
    area.add(before);
    area.add(&traveller);
    area.add(after);
    for (Square* square : {before, &traveller, after}) square->addTranslation(3, 0, 1);
    int ends = 0;
    for (Square* square : {before, after}) square->signal_deleted().connect([&] { ++ends; });
    traveller.signal_updated().connect([&] {
        if (ends > 0) return;
        delete before;
        delete after;
    });
    area.play();
    runUntil([&] { return traveller.getPosX() >= 3; });
    area.stop();
    EXPECT_EQ(ends, 2);
    EXPECT_EQ(traveller.getPosX(), 3) << "and goes on itself";
}

}  // namespace
