"""The few calls of this module that scripts use without a window."""

import getpass
import os
import platform
import tempfile
import time


def Sleep(milliseconds, _alertable=False):
    time.sleep(milliseconds / 1000.0)
    return 0


def GetTickCount():
    return int(time.monotonic() * 1000) & 0xFFFFFFFF


def GetUserName():
    return getpass.getuser()


def GetComputerName():
    return platform.node()


def GetTempPath():
    return os.path.join(tempfile.gettempdir(), "")


def GetCurrentProcessId():
    return os.getpid()
