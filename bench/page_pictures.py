"""Pages as pixels: independent renderers, and how far two pictures of a page are apart."""
import re
import subprocess
from pathlib import Path

import numpy

RENDER_SECONDS = 30
GAUSSIAN = [0.0044, 0.0540, 0.2420, 0.3991, 0.2420, 0.0540, 0.0044]
TYPICAL_EDGE = 800  # pixels on the longer side of the largest page

# A source without its links: their borders are drawn by some viewers and not carried over. Arguments: source, file to write.
REMOVE_LINKS = """
var source = new PDFDocument(scriptArgs[0]);
for (var i = 0; i < source.countPages(); i++) {
    var page = source.findPage(i), annotations = page.get("Annots");
    if (!annotations || !annotations.isArray()) continue;
    var others = [];
    for (var k = 0; k < annotations.length; k++) {
        var subtype = annotations.get(k).get("Subtype");
        if (!subtype || String(subtype) != "/Link") others.push(annotations.get(k));
    }
    page.put("Annots", others);
}
source.save(scriptArgs[1], "");
"""


class NotRendered(Exception):
    pass


def run(command, seconds=RENDER_SECONDS):
    try:
        return subprocess.run(command, capture_output=True, timeout=seconds, check=False)
    except subprocess.TimeoutExpired as error:
        raise NotRendered(f"{command[0]}: longer than {seconds} s") from error


def read_pixels(path):
    """A binary PPM or PGM as an array of rows, pixels, channels."""
    data = Path(path).read_bytes()
    fields, at = [], 0
    while len(fields) < 4:
        end = min(i for i in (data.find(c, at) for c in b" \n\t") if i >= 0) if at < len(data) else at
        fields.append(data[at:end])
        at = end + 1
    channels = 3 if fields[0] == b"P6" else 1
    width, height = int(fields[1]), int(fields[2])
    return numpy.frombuffer(data, numpy.uint8, width * height * channels, at).reshape(height, width, channels)


def without_links(source, target, folder):
    """Nothing where that cannot be written."""
    script = folder / "links.js"
    script.write_text(REMOVE_LINKS)
    run(["mutool", "run", str(script), str(source), str(target)])
    return target if target.exists() else None


def resolution(pdf):
    """Dots per inch at which the largest page has a typical size."""
    edges = [1.0]
    for line in run(["pdfinfo", "-l", "-1", str(pdf)]).stdout.decode(errors="replace").splitlines():
        size = re.match(r"Page .*size: *([\d.]+) x ([\d.]+)", line)
        edges += [float(edge) for edge in size.groups()] if size else []
    return max(2, min(300, round(TYPICAL_EDGE / max(edges) * 72))) if max(edges) > 1 else 72


def is_turned(pdf, page):
    """By a quarter or three: poppler's options for width and height mean the page before it is turned."""
    text = run(["pdfinfo", "-f", str(page), "-l", str(page), str(pdf)]).stdout.decode(errors="replace")
    return re.search(r"Page .*rot: *(90|270)$", text, re.MULTILINE) is not None


def lacks_font(pdf, page):
    lines = run(["pdffonts", "-f", str(page), "-l", str(page), str(pdf)]).stdout.decode(errors="replace").splitlines()
    return any(re.search(r" no +(yes|no) +(yes|no) +\d+ +\d+$", line) for line in lines)


def poppler(pdf, folder, last, dpi, size=None):
    """Pictures of pages 1 to `last` by number, or of page `last` at a size; crop boxes."""
    if size and is_turned(pdf, last):
        size = size[::-1]
    scale = ["-scale-to-x", str(size[0]), "-scale-to-y", str(size[1])] if size else ["-r", str(dpi)]
    run(["pdftoppm", "-q", "-cropbox", *scale, "-f", str(last if size else 1), "-l", str(last), str(pdf), str(folder / "p")])
    return {int(file.stem.rpartition("-")[2]): file for file in folder.glob("p-*.ppm")}


def mupdf(pdf, folder, last, dpi, size=None):
    """Pictures of pages 1 to `last` by number, or of page `last` at a size; crop boxes."""
    scale = ["-w", str(size[0]), "-h", str(size[1]), "-f"] if size else ["-r", str(dpi)]
    run(["mutool", "draw", "-q", "-c", "rgb", *scale, "-F", "ppm", "-o", str(folder / "m-%d.ppm"), str(pdf),
         f"{last if size else 1}-{last}"])
    return {int(file.stem.rpartition("-")[2]): file for file in folder.glob("m-*.ppm")}


RENDERERS = {"poppler": poppler, "mupdf": mupdf}


def shrunk(grey, factor):
    height, width = (edge // factor * factor for edge in grey.shape)
    return grey[:height, :width].reshape(height // factor, factor, width // factor, factor).mean(axis=(1, 3))


def softened(pixels, factor):
    """In grey, shrunk, and blurred by one pixel (standard deviation): engines hint glyphs and place the edges of
    shapes differently."""
    grey = shrunk(pixels.astype(numpy.float32).mean(axis=2), factor)
    for axis in (0, 1):
        size = grey.shape[axis]
        wide = numpy.pad(grey, [(3, 3) if axis == k else (0, 0) for k in (0, 1)], mode="edge")
        grey = sum(weight * wide.take(range(k, k + size), axis) for k, weight in enumerate(GAUSSIAN))
    return grey[:, :, None]


def compare(first, second, soften_by=0):
    """The verdict, the share of pixels that are clearly off, and the mean difference."""
    if first.shape != second.shape:
        return "differing", 1.0, 255.0
    if soften_by:
        first, second = softened(first, soften_by), softened(second, soften_by)
    apart = numpy.abs(first.astype(numpy.float32) - second)
    off = float((apart.max(axis=2) > 32).mean())
    mean = float(apart.mean())
    if mean == 0:
        return "identical", off, mean
    within = off <= 0.001 and (soften_by or mean <= 0.5)
    return "within" if within else "differing", off, mean
