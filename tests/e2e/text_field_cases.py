"""Typing into a text field of the running program. The field is the one qlex shows at the top left of its
window when QLEX_TEXT_PROBE is set; it reports each change of its text to the log, and its letters are read
from the screen's pixels."""
import time

from qlex_e2e import Session, check

PROBE_LINE = "Text probe: "
# The field's inner rectangle in pixels at a GUI scale of 1: it stands at (8, 8) with a border of 1, a row
# of text high.
FIELD_LEFT, FIELD_TOP, FIELD_BOTTOM = 9, 9, 25
# A lit pixel of white text: the thin stems of the fixed font at a scale of 1 are a little below full white.
BRIGHT = 170
PATIENCE = 30.0


def field_text(s):
    log = s.log()
    at = log.rfind(PROBE_LINE)
    if at < 0:
        return None
    begin = at + len(PROBE_LINE)
    return log[begin:log.find("\n", begin)]


def wait_for_field(s, text):
    deadline = time.time() + PATIENCE
    while field_text(s) != text:
        check(time.time() < deadline, "the field never read %r; it reads %r" % (text, field_text(s)))
        time.sleep(0.05)


def white(s, top, bottom, right=600):
    """How many near-white pixels the rows hold, and the rightmost column that has one (-1 for none)."""
    pixel = s.screen()
    count, rightmost = 0, -1
    for y in range(top, bottom):
        for x in range(right):
            if min(pixel(x, y)) >= BRIGHT:
                count += 1
                rightmost = max(rightmost, x)
    return count, rightmost


def steady_white(s):
    """The field row's white once two looks in a row agree: the frame with the text has been drawn."""
    deadline = time.time() + PATIENCE
    last = None
    while True:
        now = white(s, FIELD_TOP, FIELD_BOTTOM)
        if now[0] > 20 and now == last:
            return now
        check(time.time() < deadline, "the field's text never showed steadily: %s" % (now,))
        last = now
        time.sleep(0.1)


class ProbeCase:
    scene = None
    # The field's place in pixels is its place in interface units.
    config = "GUI.scale = 1.0;\n"
    env = {"QLEX_TEXT_PROBE": "abc"}
    ends_itself = False

    def after(self, s):
        pass


class TypingIsOneUndoStepAndAClickPlacesTheCursor(ProbeCase):
    """Typed letters show in the field and reach further right; Ctrl+Z takes the whole run of typing back and
    Ctrl+Y brings it again; a click at the field's left end puts the cursor in front of the text."""

    def run(self, s):
        wait_for_field(s, "abc")
        s.move(400, 300)
        before = steady_white(s)
        check(before[1] >= FIELD_LEFT, "the text is drawn inside the field: %s" % (before,))
        check(white(s, FIELD_BOTTOM + 2, 120)[0] == 0, "nothing white below the field")

        s.type("xyz q")
        wait_for_field(s, "abcxyz q")
        deadline = time.time() + PATIENCE
        while white(s, FIELD_TOP, FIELD_BOTTOM)[1] <= before[1] + 20:
            check(time.time() < deadline, "the longer text doesn't reach further right")
            time.sleep(0.1)

        s.key("ctrl+z")
        wait_for_field(s, "abc")
        s.key("ctrl+y")
        wait_for_field(s, "abcxyz q")

        s.click(FIELD_LEFT + 1, (FIELD_TOP + FIELD_BOTTOM) // 2)
        s.move(400, 300)
        s.type(">")
        wait_for_field(s, ">abcxyz q")
        s.key("BackSpace")
        wait_for_field(s, "abcxyz q")
        s.key("ctrl+z")
        wait_for_field(s, ">abcxyz q")


class TheFontSettingChoosesTheFont(ProbeCase):
    """The fixed font gives an i the width of an m, so a row of i reaches far further right than in the
    default font; a font that can't be read leaves the built-in one, readable, and says so in the log."""
    TEXT = "iiiiiiiiiiiiiiii"
    env = {"QLEX_TEXT_PROBE": TEXT}

    def measure(self, stage, font):
        other = Session(stage, None, self.config + 'GUI.font = "%s";\n' % font, self.env)
        try:
            other.start()
            wait_for_field(other, self.TEXT)
            found = steady_white(other)
            log = other.log()
            other.quit()
            return found, log
        finally:
            other.close()
            other.remove()

    def run(self, s):
        wait_for_field(s, self.TEXT)
        bold = steady_white(s)
        fixed, _ = self.measure(s.stage, "fixedsys")
        check(fixed[1] - FIELD_LEFT > 3 * (bold[1] - FIELD_LEFT) / 2,
              "the fixed font is wider: %s against %s" % (fixed, bold))
        stand_in, log = self.measure(s.stage, "no_such_font")
        check('no_such_font.raw" can\'t be read; the built-in font stands in' in log,
              "the log names the missing font:\n" + log[-2000:])
        check(stand_in[1] > FIELD_LEFT + 20, "the built-in font shows the text: %s" % (stand_in,))


TEXT_FIELD_CASES = {
    "text_field_typing_undo_and_click": TypingIsOneUndoStepAndAClickPlacesTheCursor,
    "text_field_font_setting": TheFontSettingChoosesTheFont,
}
