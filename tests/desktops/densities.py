"""The walk over one screen of each density, told to the toolkit or by the desktop's resources."""

from scaled import Tour, desk

SCREEN = (2560, 1600)
# What the desktop tells of a density and where.
WAYS = {"toolkit": "QT_SCALE_FACTOR", "resources": "Xft.dpi"}
DENSITIES = {"1": ("toolkit", 1)} | {
    f"{scale} by {WAYS[by]}": (by, scale) for scale in (1.25, 1.5, 2) for by in WAYS}


class DenseWalk(Tour):
    pictures = ("the line is as wide as the screen and ends at its foot", "a film fills its window")

    def rows(self):
        yield "start, in the middle of the screen", self.start
        yield "the list opens beside the main window", self.open_list
        yield "both dragged beyond each edge and back", self.out_and_back_everywhere
        yield "a button of the main window", self.answers
        yield "the strip, out of sight and back, twice, and the main window by its button", self.mini_and_back
        yield "the menu opens at the pointer", self.menu
        yield "a question opens in the middle of its window", self.question
        yield "a dialog for files", self.open_file
        yield "a track with a lyric", self.plays_the_track
        yield "the line is as wide as the screen and ends at its foot", self.line
        yield "the line goes", self.line_goes
        yield "a film fills its window", self.film_shows
        yield "over the whole screen, filled, and back", self.whole_and_back
        yield "stopped", self.film_stops
        yield "end", self.end


def start(manager, column):
    by, scale = DENSITIES[column]
    return DenseWalk(desk(manager, SCREEN, by, scale))
