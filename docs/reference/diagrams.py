"""Draws the states of a motion, and the threads of the library: see scripts/pictures."""
from svg import GREY, document, element, keep, path, text

STATE, END, DATA = "#e8eef7", "#f4f4f4", "#e8eef7"
THREAD = "#cfe3cf"


def lines(x, y, words, **style):
    """Lines of text about the height y."""
    words = words.split("\n")
    return [text(x, y + 4.5 + 16 * (i - (len(words) - 1) / 2), one, **style) for i, one in enumerate(words)]


def box(x, y, width, height, words, fill, **style):
    return [element("rect", x=x, y=y, width=width, height=height, rx=8, fill=fill, stroke=GREY, **style),
            *lines(x + width / 2, y + height / 2, words, text_anchor="middle")]


def arrow(*points):
    return [path(points, stroke=GREY, stroke_width=1.5, marker_end="url(#head)")]


def note(x, y, words, anchor="middle"):
    return lines(x, y, words, font_size=12, text_anchor=anchor)


MOVE = [
    *lines(20, 237, "a call, such\nas Movej_Cmd"), *arrow((118, 237), (158, 237)),
    *box(160, 210, 150, 54, "in the library's\nqueue", STATE),
    *arrow((310, 237), (558, 237)), *note(356, 213, "one per\n20 ms"), *note(478, 213, "acknowledged:\ntrue"),
    *arrow((400, 237), (400, 358)), *note(409, 306, "acknowledged:\nfalse", "start"),
    *arrow((205, 264), (205, 358)), *note(213, 306, "ZK_DROP_QUEUED", "start"),
    *box(130, 360, 160, 54, "dropped: the call\nreturns 7 or 14", END),
    *box(320, 360, 160, 54, "refused:\nthe call returns 1", END),
    *box(560, 210, 150, 54, "waiting in the\ncontroller", STATE),
    *arrow((710, 237), (838, 237)), *note(773, 225, "its turn comes"),
    *arrow((635, 264), (635, 387), (718, 387)), *note(643, 306, "ZK_STOP,\nZK_SLOW_STOP", "start"),
    *box(840, 210, 120, 54, "running", THREAD),
    *arrow((875, 210), (875, 132)), *note(867, 172, "ZK_PAUSE", "end"),
    *arrow((925, 130), (925, 208)), *note(933, 172, "Move_Continue_Cmd", "start"),
    *box(840, 76, 120, 54, "paused", STATE),
    *arrow((900, 264), (900, 358)),
    *note(908, 306, "ZK_STOP,\nZK_SLOW_STOP,\na fault;\nreport: false", "start"),
    *box(720, 360, 210, 54, "ended before its target:\nthe wait returns 1", END),
    *arrow((960, 103), (1080, 103), (1080, 387), (932, 387)), *note(1088, 140, "ZK_STOP, ZK_SLOW_STOP", "start"),
    *arrow((960, 237), (1178, 237)), *note(1128, 225, "report: true"),
    *box(1180, 210, 150, 54, "arrived:\nthe wait returns 0", END),
]

LANE = [100, 172, 250, 322, 412, 484]  # middle of each row
THREADS = [
    *(element("rect", x=x, y=46, width=width, height=486, rx=10, fill="none", stroke="#b5bec9")
      for x, width in ((20, 190), (370, 390), (950, 150))),
    *(text(x, 34, words, font_weight="bold", text_anchor="middle")
      for x, words in ((115, "program"), (565, "library"), (1025, "controller"))),
    *box(35, 62, 160, 148, "threads that\ncall commands", THREAD),
    *box(35, LANE[2] - 25, 160, 50, "callbacks", "#fff", stroke_dasharray="5 4"),
    *box(35, LANE[3] - 25, 160, 50, "file of a\ndrag teaching", END),
    *box(35, LANE[4] - 25, 160, 50, "threads that\nread the state", THREAD),
    *box(35, LANE[5] - 25, 160, 50, "callback", "#fff", stroke_dasharray="5 4"),
    *box(390, LANE[0] - 18, 150, 46, "queue, one for\nall arms", DATA),
    *box(390, LANE[1] - 18, 150, 46, "mailboxes, a slot\nper connection", DATA),
    *box(390, LANE[4] - 25, 150, 50, "last state\nof each arm", DATA),
    *box(390, LANE[3] - 25, 150, 50, "recording", THREAD),
    *box(640, LANE[0] - 18, 100, 46, "transmit", THREAD),
    *box(640, LANE[1] - 18, 100, LANE[3] - LANE[1] + 43, "receive", THREAD),
    *box(640, LANE[4] - 25, 100, 50, "streams", THREAD),
    *box(640, LANE[5] - 25, 100, 50, "real-time", THREAD),
    *box(965, 62, 120, 148, "TCP: requests,\nreplies, reports", END),
    *box(965, LANE[4] - 25, 120, LANE[5] - LANE[4] + 50, "UDP: state", END),
    *arrow((195, 72), (963, 72)), *note(288, 61, "ZK_Stop, set-points, files"),
    *arrow((195, 105), (388, 105)), *note(288, 94, "requests"),
    *arrow((540, 105), (638, 105)), *arrow((740, 105), (963, 105)), *note(855, 94, "a frame every 20 ms"),
    *arrow((965, 177), (742, 177)), *arrow((640, 177), (542, 177)), *note(591, 166, "parsed"),
    *arrow((390, 177), (197, 177)), *note(288, 166, "replies"),
    *arrow((640, LANE[2]), (197, LANE[2])), *note(288, LANE[2] - 18, "reports, lost\nconnections"),
    *arrow((640, LANE[3]), (542, LANE[3])), *note(591, LANE[3] - 11, "points"),
    *arrow((390, LANE[3]), (197, LANE[3])),
    *arrow((965, LANE[4]), (742, LANE[4])), *note(855, LANE[4] - 11, "datagrams"),
    *arrow((640, LANE[4]), (542, LANE[4])), *arrow((390, LANE[4]), (197, LANE[4])),
    *note(288, LANE[4] - 11, "ZK_Get_State"),
    *arrow((965, LANE[5]), (742, LANE[5])), *note(855, LANE[5] - 11, "datagrams"),
    *arrow((640, LANE[5]), (197, LANE[5])), *note(288, LANE[5] - 11, "each record"),
    *(part for i, (fill, words) in enumerate(((THREAD, "threads"), (DATA, "memory that they share")))
      for part in (element("rect", x=390 + 100 * i, y=546, width=16, height=16, rx=3, fill=fill, stroke=GREY),
                   text(412 + 100 * i, 559, words, font_size=12))),
]

keep([("move", document(1350, 440, [text(20, 42, "The states of a motion", font_size=20, font_weight="bold"), *MOVE],
                        {"head": GREY})),
      ("threads", document(1120, 574, THREADS, {"head": GREY}))])
