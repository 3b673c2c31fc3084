"""The menu's thirty rows: what stands on them and which file each one runs."""

ROWS = [
    ("01. Velmora 2009 Intro", "000-Velmora2009.exe"),
    ("02. Hobnail Intro 2 First Cut", "001-Hobnail1.exe"),
    ("03. Ostrik Tessel Intro 1", "004-Ostrik01.exe"),
    ("04. Ostrik Intro 1 V4 Ringing Tinplate", "005-Ostrik01v4l.exe"),
    ("05. Ostrik Intro 4 Lanternfish", "006-Ostrik04.exe"),
    ("06. Ostrik Intro 5 Glasswork", "007-Ostrik05.exe"),
    ("07. BQLV - Bluequay and Lantern Vale Inc. Intro", "008-BQLV.exe"),
    ("08. Hobnail Loader Intro #6", "009-Hobnail6.exe"),
    ("09. Anvil 1733 Intro", "010-Anvil1733.exe"),
    ("10. Fylex - Fluent Lexical Systems Intro Remake", "011-Fylex.exe"),
    ("11. Ostrik Intro 7 KTZ", "012-Ostrik07.exe"),
    ("12. Ostrik Intro 8 Marmots", "013-Ostrik08.exe"),
    ("13. WRaS - The Wren and Sparrow Loader", "014-WRaS.exe"),
    ("14. Ostrik Intro 9 Dornfeld", "015-Ostrik09-00.exe"),
    ("15. Ostrik Intro 9 M1 Sandlark", "016-Ostrik09-01.exe"),
    ("16. Ostrik Intro 9 M2 Brackwater", "017-Ostrik09-02.exe"),
    ("17. Ostrik Intro 9 M3 Tumblequill", "018-Ostrik09-03.exe"),
    ("18. Ostrik Intro 9 M4 Pebblegrind", "019-Ostrik09-04.exe"),
    ("19. Ostrik Intro 9 M5 Ashkettle", "020-Ostrik09-05.exe"),
    ("20. Ostrik Intro 9 M6 Salt Lantern", "021-Ostrik09-06.exe"),
    ("21. Ostrik Intro 9 M7 Dunefinch", "022-Ostrik09-07.exe"),
    ("22. Myrtle Home Computer Loader Remake", "023-Myrtle.exe"),
    ("23. Ostrik Intro 10 Amber", "024-Ostrik10.exe"),
    ("24. Ostrik Intro 11 Ripples", "025-Ostrik11.exe"),
    ("25. Ostrik Intro 12 Your Harbour", "026-Ostrik12.exe"),
    ("26. Ostrik Intro 13 Glyphwork", "027-Ostrik13.exe"),
    ("27. Ostrik Intro 14 Mopa", "028-Ostrik14.exe"),
    ("28. Ostrik Intro 15 Inlaid", "029-Ostrik15.exe"),
    ("Show NFO File", "NFOFILE"),
    ("Quit", "QUIT"),
]

INTRO_FILES = [name for _, name in ROWS[:28]]

WELCOME = [
    "Welcome to my Tessel Intros Keldara 2009!",
    "It contains almost all of the intros that I created With the Tessel Forge in 2009.",
    "Select an Intro using the cursor keys and press the Enter Key To execute it. "
    "Press ESC To quit the intro or this program.",
    "Cheers! Ilmar aka Ostrik.",
]
