#!/usr/bin/env python3
"""Writes the sample files beside this script and the seeds of the fuzz targets, all in forms that other
programs save: property lists in XML and in binary. Needs nothing but Python's own library. The files are
kept in the repository, so that neither building nor testing needs Python."""

import base64
import plistlib
from datetime import datetime
from pathlib import Path

HERE = Path(__file__).parent
SEEDS = HERE.parent.parent / "fuzz" / "seeds" / "plist"

PNG = base64.b64decode(
    "iVBORw0KGgoAAAANSUhEUgAAAAEAAAABCAYAAAAfFcSJAAAADUlEQVR42mP8z8BQDwAEhQGAhKmMIQAAAABJRU5ErkJggg=="
)


def snippet(abbreviation, text, label="", kind=0, **more):
    return {
        "abbreviation": abbreviation,
        "abbreviationMode": 0,
        "creationDate": datetime(2020, 2, 29, 12, 30),
        "label": label,
        "plainText": text,
        "snippetType": kind,
        **more,
    }


GROUP = {
    "groupInfo": {"expandAfterMode": 0, "groupName": "Letters & Notes"},
    "snippetsTE2": [snippet("old", "Open this with a newer version.")],
    "snippetsTE3": [
        snippet("sig", "Kind regards,\nAda Lovelace ✍️", "Signature"),
        snippet("ddate", "Today is %A, %e. %B %Y.%|", "Date"),
        snippet("ltr", "Dear %filltext:name=Name:default=Ada%,\n%snippet:sig%", "Letter"),
        snippet("pct", "100%% sure"),
        snippet("ls", "#!/bin/sh\nls %fill:folder%", "List", 3),
        snippet("logo", "", "Logo", 1, picture=PNG, file="../../etc/passwd"),
        snippet("rich", "Bold words", "Rich", 1, richText=b"{\\rtf1\\ansi {\\b Bold} words}"),
    ],
}

BACKUP = {
    "groups": [
        {"groupInfo": {"groupName": "One"}, "snippetsTE2": [snippet("a1", "first")]},
        {"groupInfo": {"groupName": "Two"}, "snippetsTE2": [snippet("a2", "second")]},
    ]
}

CLIPPINGS = {
    "Set": [
        {"abbreviation": "btw", "clipping": "by the way", "label": "By the way"},
        {"Abbreviation": "pc", "Expansion": "50% off %cursor%"},
    ]
}

CLIPPING = {
    "UTI-Data": {
        "com.apple.traditional-mac-plain-text": "Grüße".encode("mac_roman"),
        "public.rtf": b"{\\rtf1 Gr\\'fc\\'dfe}",
        "public.utf16-plain-text": "Grüße".encode("utf-16-le"),
        "public.utf8-plain-text": "Grüße",
    }
}

PICTURE = {"UTI-Data": {"public.png": PNG}}

SAMPLES = {
    "letters.textexpander": (GROUP, plistlib.FMT_XML),
    "letters-binary.textexpander": (GROUP, plistlib.FMT_BINARY),
    "library.textexpanderbackup": (BACKUP, plistlib.FMT_BINARY),
    "words.typeit4me": (CLIPPINGS, plistlib.FMT_XML),
    "words-binary.typeit4me": (CLIPPINGS, plistlib.FMT_BINARY),
    "greeting.textClipping": (CLIPPING, plistlib.FMT_BINARY),
    "greeting-xml.textClipping": (CLIPPING, plistlib.FMT_XML),
    "picture.textClipping": (PICTURE, plistlib.FMT_BINARY),
}

# Small ones: a fuzzer finds more by changing few bytes.
KINDS = {"d": [1, -2, True, 1.5, "é", b"x", datetime(2001, 1, 1), {"k": []}]}
SMALL = {"snippetsTE2": [{"abbreviation": "a", "plainText": "%Y%|%fillpart:name=p%x%fillpartend%"}]}


def main():
    for name, (value, form) in SAMPLES.items():
        (HERE / name).write_bytes(plistlib.dumps(value, fmt=form))
    SEEDS.mkdir(parents=True, exist_ok=True)
    for name, value in {"kinds": KINDS, "small": SMALL, "words": {"btw": "by the way"}, "clipping": PICTURE}.items():
        for form in (plistlib.FMT_XML, plistlib.FMT_BINARY):
            seed = SEEDS / f"{name}_{'xml' if form == plistlib.FMT_XML else 'binary'}"
            seed.write_bytes(plistlib.dumps(value, fmt=form))


main()
