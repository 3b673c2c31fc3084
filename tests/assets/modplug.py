"""libmodplug as the program uses it, for tests: its own settings but for the endless repeat, and
the loudest master volume."""

import ctypes

import numpy as np

RATE = 44100
FRAME = 4
MASTER_VOLUME = 512
FIELDS = ["mFlags", "mChannels", "mBits", "mFrequency", "mResamplingMode", "mStereoSeparation",
          "mMaxMixChannels", "mReverbDepth", "mReverbDelay", "mBassAmount", "mBassRange",
          "mSurroundDepth", "mSurroundDelay", "mLoopCount"]
NOT_TOLD = {"mStereoSeparation", "mMaxMixChannels"}  # the program leaves them as they are


class Settings(ctypes.Structure):
    _fields_ = [(name, ctypes.c_int) for name in FIELDS]


def load_library():
    library = ctypes.CDLL("libmodplug.so.1")
    library.ModPlug_Load.restype = ctypes.c_void_p
    library.ModPlug_Load.argtypes = [ctypes.c_char_p, ctypes.c_int]
    library.ModPlug_Unload.argtypes = [ctypes.c_void_p]
    library.ModPlug_Read.argtypes = [ctypes.c_void_p, ctypes.c_void_p, ctypes.c_int]
    library.ModPlug_SetMasterVolume.argtypes = [ctypes.c_void_p, ctypes.c_uint]
    library.ModPlug_GetCurrentOrder.argtypes = [ctypes.c_void_p]
    settings = Settings()
    library.ModPlug_GetSettings(ctypes.byref(settings))
    settings.mLoopCount = -1
    library.ModPlug_SetSettings(ctypes.byref(settings))
    return library


LIBRARY = load_library()


def settings_in_use():
    settings = Settings()
    LIBRARY.ModPlug_GetSettings(ctypes.byref(settings))
    return {name: getattr(settings, name) for name in FIELDS if name not in NOT_TOLD}


class Player:
    """One module. Only one may be open at a time: the library's mixer is shared."""

    def __init__(self, data):
        self.file = LIBRARY.ModPlug_Load(data, len(data))
        if not self.file:
            raise ValueError("the library does not accept this module")
        LIBRARY.ModPlug_SetMasterVolume(self.file, MASTER_VOLUME)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        LIBRARY.ModPlug_Unload(self.file)

    def read(self, frames):
        """The next frames as rows of left and right."""
        sound = np.zeros((frames, 2), np.int16)
        LIBRARY.ModPlug_Read(self.file, sound.ctypes.data, frames * FRAME)
        return sound

    def order(self):
        return LIBRARY.ModPlug_GetCurrentOrder(self.file)
