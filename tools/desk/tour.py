"""A short tour through the real program on a headless desk, for eyes and ears.

Called by ./run, with the build folder: writes pictures and sound into its tour/ folder."""

import os
import sys
import wave
from pathlib import Path

from . import gallery, sound_sheet, spectrogram
from .children import tidy_up_on_termination
from .desk import Desk
from .menu import INFO_ROW, Menu, highlighted_row
from .sound import RATE
from .waiting import DeskError

MUSIC_SECONDS = 10
SHOW_SECONDS = 2.5
INTRO_SECONDS = 8     # of sound are kept of each intro
SHOWN_INTRO = 4


class Tour:
    """The stations of the tour, in order, each with a picture."""

    def __init__(self, desk, build, out):
        self.desk, self.out = desk, out
        self._recording = desk.sound.record(desk.folder / "music.raw")
        self.menu = Menu(desk, build)
        self._pictures = 0

    def walk(self):
        self._show_menu()
        self._show_moves()
        self._show_intro()
        self._show_info()
        self._write_music()
        self._show_all_intros()
        self._leave()

    def _show_menu(self):
        self.menu.wait_up()
        self._keep("menu", "the menu has come up")

    def _show_moves(self):
        for key, row in (("Down", 1), ("Down", 2), ("Right", 17), ("Up", 16)):
            self.menu.step(key, row)
        self._keep("moved", "after a few moves")

    def _show_intro(self):
        self.menu.wait_unpacked()
        self.menu.select(SHOWN_INTRO)
        shot = gallery.show(self.menu, SHOWN_INTRO, self._names()[SHOWN_INTRO], SHOW_SECONDS)
        self._keep("intro", f"the intro {shot.name}", shot.later)
        self._keep("menu-again", "back on the same row")

    def _show_info(self):
        self.menu.select(INFO_ROW)
        self.menu.press("Return")
        self.desk.wait_picture(lambda pixels: highlighted_row(pixels) is None and
                               pixels[145:].any(), "the info page")
        self._keep("info", "the info page")
        self.menu.press("Escape")
        self.menu.wait_row(INFO_ROW)

    def _write_music(self):
        print(f"  {MUSIC_SECONDS} s of the music", flush=True)
        start = self._recording.wait_for(MUSIC_SECONDS)
        samples = self._recording.samples(start, MUSIC_SECONDS * RATE)
        self._write_sound("music", samples)
        spectrogram.draw(samples, RATE).save(self.out / "music.png")

    def _show_all_intros(self):
        shots, sounds = [], {}
        for shot in gallery.walk(self.menu, self._names(), INTRO_SECONDS, self._recording):
            shots.append(shot)
            name = shot.name.removesuffix(".exe")
            sounds[name] = self._recording.samples(shot.frames[0], int(INTRO_SECONDS * RATE))
            self._write_sound(name, sounds[name])
            print(f"  intro {len(shots):2} of {len(self._names())}: {shot.name}", flush=True)
        gallery.contact_sheet(shots).save(self.out / "contact-sheet.png")
        sound_sheet.draw(sounds).save(self.out / "intros-sound.png")

    def _write_sound(self, name, samples):
        with wave.open(str(self.out / f"{name}.wav"), "wb") as file:
            file.setparams((2, 2, RATE, 0, "NONE", ""))
            file.writeframes(samples.tobytes())

    def _leave(self):
        self.menu.press("Escape")
        self.menu.program.wait_end()

    def _names(self):
        """The unpacked files in the order of the menu, which is that of their numbers."""
        return sorted(name for name in os.listdir(self.menu.staging_folder) if name[0].isdigit())

    def _keep(self, name, what, pixels=None):
        self._pictures += 1
        path = self.out / f"{self._pictures}-{name}.png"
        print(f"  {what}: {path.name}", flush=True)
        self.desk.save_picture(path, pixels)


def main(build):
    out = build / "tour"
    out.mkdir(parents=True, exist_ok=True)
    print("Touring the menu on a headless desk; this takes six to seven minutes, some seconds\n"
          "more the first time, when Wine sets itself up.", flush=True)
    with Desk(build / "desk" / "logs" / "tour", build / "desk" / "template") as desk:
        Tour(desk, build, out).walk()
    print(f"Pictures and sound of the tour are in {out}")


if __name__ == "__main__":
    tidy_up_on_termination()
    try:
        main(Path(sys.argv[1]).resolve())
    except DeskError as error:
        sys.exit(f"run: the tour stopped: {error}")
    except KeyboardInterrupt:
        sys.exit("run: the tour was interrupted")
