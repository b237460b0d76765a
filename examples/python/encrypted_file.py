"""A file with a password, and failures told apart."""

import logging

import transient_run  # noqa: F401

import zrfx

logging.basicConfig(level=logging.WARNING)  # the library's messages go to the logger "zrfx"

with zrfx.create("encrypted_file.zrfx", password="open sesame", level=9) as f:
    f.texts["secret"] = "42"

for password in (None, "sesame", "open sesame"):
    try:
        with zrfx.open("encrypted_file.zrfx", password) as f:
            print(f.texts["secret"])
    except zrfx.PasswordNeededError:
        print("needs a password")
    except zrfx.WrongPasswordError as error:
        print(error.code, error)

try:
    zrfx.open("missing.zrfx")
except FileNotFoundError as error:  # as Python has it; all are zrfx.ZrfxError, and so OSError
    print(error)
