// How a tick shows the title, and where a text stands that took another's place.

#include "tests/unit/playback/tick_fixture.h"

#include "lyrics/lrcForm.h"
#include "playback/miniForm.h"

namespace velmora {
namespace {

TEST_F(Tick, RollsAWideTitleInStepsOf30AndDoesNotRestartItForANewOne) {
    play();
    media.advance(1000);
    app.player().nowPlay_Title = wide(main().nameBox);
    main().playInfo_Show.setLeft(0);
    main().playInfo_Show.setTag(u"");
    tickMain();
    tickMain();
    EXPECT_EQ(main().playInfo_Show.left(), -60);
    app.player().nowPlay_Title = wide(main().nameBox, 9);
    tickMain();
    EXPECT_EQ(main().playInfo_Show.left(), -90);
}

TEST_F(Tick, ShowsAShorterTitleAtOnceThatComesBehindALongOneThatHadRolledFar) {
    play();
    media.advance(1000);
    app.player().nowPlay_Title = wide(main().nameBox, 200);
    auto &label = main().playInfo_Show;
    label.setTag(u"");
    label.setLeft(0);
    tickMain();
    label.setLeft(-15000);
    app.player().nowPlay_Title = wide(main().nameBox);
    tickMain();
    EXPECT_GT(label.left() + label.width(), 0);
    EXPECT_LT(label.left(), main().nameBox.width());
}

TEST_F(Tick, ShowsALineAtOnceWhoseLettersBecameSmallerWhileItHadRolledFar) {
    play();
    app.lrcForm().nowLrcLine = wide(main().lrcBox, 200);
    tickMain();
    main().lrc_Text.setLeft(-15000);
    app.lrcForm().nowLrcLine = wide(main().lrcBox);
    main().lrc_Text.setCaption(app.lrcForm().nowLrcLine);
    tickMain(); // a new line starts at the left
    main().lrc_Text.setLeft(-15000);
    tickMain();
    EXPECT_GT(main().lrc_Text.left() + main().lrc_Text.width(), 0);
}

TEST_F(Tick, TheGreetingOfAnotherLanguageIsSeenWhereATitleHadRolledFarAndPlayIsPaused) {
    app.setControl().Language_Index = 1;
    play();
    media.advance(1000);
    app.player().nowPlay_Title = wide(main().nameBox, 200);
    tickMain();
    auto &mini = app.miniForm();
    mini.playInfo_Show.setCaption(app.player().nowPlay_Title);
    for (forms::Label *label : {&main().playInfo_Show, &mini.playInfo_Show})
        label->setLeft(-15000);
    app.player().pause_Sub();
    app.Language_Set().apply_Language();
    tickMain();
    EXPECT_EQ(main().playInfo_Show.caption(), u"Welcome to Velmora");
    EXPECT_EQ(main().playInfo_Show.left(),
              main().nameBox.width() / 2 - main().playInfo_Show.width() / 2);
    EXPECT_EQ(mini.playInfo_Show.left(), mini.nameBox.width() / 2 - mini.playInfo_Show.width() / 2);
}

TEST_F(Tick, TurnsAWideTitleAtBothMarginsOf200) {
    play();
    media.advance(1000);
    app.player().nowPlay_Title = wide(main().nameBox);
    auto &label = main().playInfo_Show;
    label.setCaption(app.player().nowPlay_Title);
    const Twips turn = -(label.width() - main().nameBox.width()) - 200;
    label.setTag(u"");
    label.setLeft(turn + 31);
    tickMain();
    EXPECT_EQ(label.tag(), u"");
    tickMain();
    EXPECT_EQ(label.tag(), u"1");
    label.setLeft(169);
    tickMain();
    EXPECT_EQ(label.tag(), u"1");
    tickMain();
    EXPECT_EQ(label.tag(), u"2");
}

TEST_F(Tick, CentresATitleThatFits) {
    play();
    media.advance(1000);
    app.player().nowPlay_Title = u"abc";
    tickMain();
    EXPECT_EQ(main().playInfo_Show.left(),
              main().nameBox.width() / 2 - main().playInfo_Show.width() / 2);
}

} // namespace
} // namespace velmora
