"""Makes the handbook as it is installed: one HTML file with its pictures in it.

    make_handbook.py HANDBOOK.md TEMPLATE.html OUT.html

Of a picture with a NAME-dark.png beside it, the page shows that one on a dark desktop. One file, since a browser that runs
confined is shown nothing but the file that it is told to open.
"""
import base64
import re
import sys
from pathlib import Path

import markdown
from markdown.extensions.toc import TocExtension, slugify_unicode


def data_url(path):
    return "data:image/png;base64," + base64.b64encode(path.read_bytes()).decode()


def with_picture(folder, image):
    """The HTML of an image, with the picture's bytes in place of its name."""
    light = folder / image[1]
    dark = light.with_name(light.stem + "-dark.png")
    shown = image[0].replace(image[1], data_url(light))
    if not dark.exists():
        return shown
    return f'<picture><source media="(prefers-color-scheme: dark)" srcset="{data_url(dark)}">{shown}</picture>'


def main(source, template, target):
    parts = TocExtension(slugify=slugify_unicode, toc_depth="2-2")
    converter = markdown.Markdown(extensions=["tables", parts], output_format="html")
    text = source.read_text(encoding="utf-8")
    body = converter.convert(text)
    # The list of the parts comes before the first of them.
    body = body.replace("<h2", f"<nav>{converter.toc}</nav>\n<h2", 1)
    body = re.sub(r'<img [^>]*src="([^"]+)"[^>]*>', lambda image: with_picture(source.parent, image), body)
    title = re.match(r"# (.+)", text)[1]
    page = template.read_text(encoding="utf-8").replace("@TITLE@", title).replace("@BODY@", body)
    target.write_text(page, encoding="utf-8")


if __name__ == "__main__":
    main(*map(Path, sys.argv[1:]))
