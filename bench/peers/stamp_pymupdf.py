#!/usr/bin/python3
"""stamp_pymupdf.py IN.pdf STAMP.png OUT.pdf: the picture on every page."""
import sys

import fitz

source, picture, target = sys.argv[1:]
document = fitz.open(source)
reference = 0
for page in document:
    place = fitz.Rect(200, 120, 400, 200)
    reference = page.insert_image(place, filename=None if reference else picture, xref=reference)
document.save(target)
