#pragma once

// The main window. Its bars and channel images are the program's memory of volume and channel: the
// other windows read them from here.

#include "playback/Main.design.h"

#include <cstdint>
#include <string>

namespace velmora {

class Velmora;
struct StateControls;

class Main : public Main_Design {
public:
    explicit Main(Velmora &app);
    void load();

    // --- what other windows read and write -------------------------------------------------------
    std::u16string Vesion;           // major.minor.revision of the program
    std::int16_t flash_Request = 0;  // Flash_Window acts while set; nothing clears it
    std::int16_t playList_Shown = 0; // the play list was open when last shown or hidden by a button
    std::int32_t topmost_Main = 0;   // answers of the last always-on-top calls
    std::int32_t topmost_PlayList = 0;
    std::u16string rotation_Text; // the rolling caption
    std::int16_t rotation_Count = 0;
    std::u16string chosen_File; // the file picked last, while it is being taken in

    // --- start -----------------------------------------------------------------------------------
    // The play list, the last file, then the tick.
    void main_Load();

    // --- transport -------------------------------------------------------------------------------
    void playButton_Click();
    void pauseButton_Click();
    void stopButton_Click();
    // The stop of every key, menu and smaller window: the medium goes first, then the looks.
    void closeAndStop();
    void nextButton_Click();
    void upButton_Click();
    // One file by the dialog; what follows is take_Chosen_File.
    void openFile_Button_Click();
    // What follows once a file was picked: selects it when the list has it, else appends and plays
    // it. An empty path changes nothing. Gives both windows back in the end.
    void take_Chosen_File(const std::u16string &path);
    // The stopped look of all windows; sends no command to the engine.
    void stop_Sub();

    // --- windows ---------------------------------------------------------------------------------
    // Ends the program.
    void closeButton_Click();
    void minimizeButton_Click();
    void mini_Button_Click();
    void playListButton_Click();
    void song_GoTo_List_Click();
    void videoScreen_Button_Click();
    void playInfo_Click();
    void desktop_Lrc_Click();
    void do_Lrc_Click();
    void search_Lrc_Internet_Click();
    void search_Song_Internet_Click();
    void welcome_Click();
    void check_SoundDriver_Click();
    void playSet_Button_Click();
    void about_Click();
    void link_Click();
    // Selects exactly the rows of the play list that show this name, and brings them into view.
    void selectNamesakes(const std::u16string &stem);
    // Brings the window to the front.
    void get_Focus();
    void Flash_Window();
    // Enables or disables every button and bar.
    void meActiveControl_Enabled(bool flag);

    // --- bars and channel ------------------------------------------------------------------------
    void load_Played_BG_MouseUp(Twips x);
    // The same to a time (ms).
    void seek_To_Position(std::int32_t ms);
    void Volume_Set_BG_MouseUp(Twips x);
    void Volume_ICO_Click();
    // Switches to the channel (0, 1, 2); the images follow only when the engine took it.
    void choose_Channel(std::int16_t channel);

private:
    void setBarHandlers();
    void setDragHandlers();
    void loadLastFile();
    void takeChosenFile(const std::u16string &path);
    StateControls stateControls();
    void tick();
    void keepScrollBars();
    void rollCaption();
    void startDrag(const forms::MouseEvent &event);
    void dragMove(const forms::MouseEvent &event);
    void endDrag(const forms::MouseEvent &event);

    Velmora &app_;
    std::u16string shownLine_; // the line for which the marquee last restarted
};

} // namespace velmora
