#!/usr/bin/env python3
"""Renders results of `undercut` side by side to a PNG, for the documents.

    ./undercut demo
    docs/make_picture.py demo/depth.ply demo/regions.ply docs/regions.png
    docs/make_picture.py --eye=0,0,1 --up=0,1,0 rim/rim.ply+rim/rim.pol rim.png

A picture is a coloured PLY, with curves (.pol) and points (.asc) joined to it by "+", which are
drawn over it in the part's coordinates. --eye is the direction from the part to the eye, --up what
is up, --width the pixels of the whole. Needs numpy and Pillow. Parallel projection, a z-buffer, one
light.
"""
import argparse

import numpy as np
from PIL import Image

SIZE, SCALE = 900, 2  # pixels, and samples along each side of one
EYE, UP = (-0.583, -0.423, 0.694), (0, 1, 0)
DARK, LIGHT = 90, 225  # what is in no region of interest is drawn light
INKS = ((20, 20, 20), (200, 30, 30), (30, 70, 190), (20, 130, 60))  # of curves and points in turn
LINE, DOT = 5, 9  # radius of what is drawn, samples


def read_ply(path):
    data = open(path, "rb").read()
    head, body = data.split(b"end_header\n", 1)
    lines = head.decode().splitlines()
    counts = [int(line.split()[2]) for line in lines if line.startswith("element")]
    points = np.frombuffer(body, "<f8", 3 * counts[0]).reshape(-1, 3)
    value = "<f8" if lines[-1].startswith("property double") else "<i4"
    face = np.dtype([("n", "u1"), ("v", "<i4", 3), ("rgb", "u1", 3), ("value", value)])
    faces = np.frombuffer(body, face, counts[1], points.nbytes)
    colours = np.where(np.all(faces["rgb"] == DARK, axis=1)[:, None], LIGHT, faces["rgb"])
    return points, faces["v"], colours


def read_marks(path):
    """Blocks of points, and whether each block is a closed curve."""
    blocks, closed = [[]], path.endswith(".pol")
    for line in open(path):
        if line.startswith("<"):
            blocks.append([])
        elif line.strip():
            blocks[-1].append([float(word) for word in line.split()[:3]])
    return [np.array(block) for block in blocks if block], closed


def view(eye, up):
    away = np.array(eye, float) / np.linalg.norm(eye)
    right = np.cross(up, away)
    right /= np.linalg.norm(right)
    return np.array([right, np.cross(away, right), away])


def draw_faces(image, depth, places, faces, colours):
    x, y, z = places.T
    size = len(image)
    a, b, c = (places[faces[:, k]] * (1, -1, 1) for k in range(3))
    normal = np.cross(b - a, c - a)
    normal /= np.maximum(np.linalg.norm(normal, axis=1, keepdims=True), 1e-30)
    light = np.array([0.35, 0.55, 0.76])
    shade = 0.35 + 0.65 * np.clip(normal @ light, 0, 1)
    for i in np.nonzero(normal[:, 2] > 0)[0]:
        vx, vy, vz = x[faces[i]], y[faces[i]], z[faces[i]]
        x0, x1 = int(vx.min()), int(vx.max()) + 1
        y0, y1 = int(vy.min()), int(vy.max()) + 1
        gx, gy = np.meshgrid(np.arange(x0, x1 + 1), np.arange(y0, y1 + 1))
        d = (vy[1] - vy[2]) * (vx[0] - vx[2]) + (vx[2] - vx[1]) * (vy[0] - vy[2])
        if d == 0:
            continue
        u = ((vy[1] - vy[2]) * (gx - vx[2]) + (vx[2] - vx[1]) * (gy - vy[2])) / d
        v = ((vy[2] - vy[0]) * (gx - vx[2]) + (vx[0] - vx[2]) * (gy - vy[2])) / d
        inside = (u >= -1e-9) & (v >= -1e-9) & (u + v <= 1 + 1e-9)
        inside &= (gx >= 0) & (gx < size) & (gy >= 0) & (gy < size)
        gz = u * vz[0] + v * vz[1] + (1 - u - v) * vz[2]
        gx, gy, gz = gx[inside], gy[inside], gz[inside]
        nearer = gz > depth[gy, gx]
        depth[gy[nearer], gx[nearer]] = gz[nearer]
        image[gy[nearer], gx[nearer]] = colours[i] * shade[i]


def draw_dots(image, depth, places, radius, ink):
    """Disks, but for those that the part hides by more than a hundredth of the picture."""
    size = len(image)
    span = np.arange(-radius, radius + 1)
    dx, dy = np.meshgrid(span, span)
    disk = dx**2 + dy**2 <= radius**2
    for x, y, z in places:
        gx, gy = (x + dx[disk]).astype(int), (y + dy[disk]).astype(int)
        keep = (gx >= 0) & (gx < size) & (gy >= 0) & (gy < size)
        gx, gy = gx[keep], gy[keep]
        seen = depth[gy, gx] < z + 0.01 * size
        image[gy[seen], gx[seen]] = ink


def draw_marks(image, depth, blocks, closed, ink):
    for block in blocks:
        if not closed:
            draw_dots(image, depth, block, DOT, ink)
            continue
        for p, q in zip(block, np.roll(block, -1, axis=0)):
            steps = np.linspace(0, 1, int(np.linalg.norm(q - p)) + 2)[:, None]
            draw_dots(image, depth, p + steps * (q - p), LINE, ink)


def render(picture, turn):
    part, *paths = picture.split("+")
    points, faces, colours = read_ply(part)
    marks = [read_marks(path) for path in paths]
    blocks = [block for blocks, _ in marks for block in blocks]
    seen = np.concatenate([points[np.unique(faces)], *blocks]) @ turn.T
    low, high = seen.min(axis=0), seen.max(axis=0)
    size = SIZE * SCALE
    scale = 0.92 * size / max(high[0] - low[0], high[1] - low[1])

    def place(p):
        return (p @ turn.T - (low + high) / 2) * scale * (1, -1, 1) + (size / 2, size / 2, 0)

    image = np.full((size, size, 3), 255.0)
    depth = np.full((size, size), -np.inf)
    draw_faces(image, depth, place(points), faces, colours)
    for k, (blocks, closed) in enumerate(marks):
        draw_marks(image, depth, [place(block) for block in blocks], closed, INKS[k % len(INKS)])
    return Image.fromarray(image.astype(np.uint8)).resize((SIZE, SIZE), Image.LANCZOS)


def crop(picture):
    """Without most of the white above and below."""
    dark = np.nonzero((np.asarray(picture) < 250).any(axis=(1, 2)))[0]
    return picture.crop((0, max(0, dark[0] - 20), picture.width, min(picture.height, dark[-1] + 20)))


def main():
    numbers = lambda text: [float(word) for word in text.split(",")]
    parser = argparse.ArgumentParser()
    parser.add_argument("--eye", type=numbers, default=EYE)
    parser.add_argument("--up", type=numbers, default=UP)
    parser.add_argument("--width", type=int, default=SIZE)
    parser.add_argument("pictures", nargs="+")
    parser.add_argument("target")
    options = parser.parse_args()
    pictures = [render(picture, view(options.eye, options.up)) for picture in options.pictures]
    wide = Image.new("RGB", (len(pictures) * SIZE, SIZE), "white")
    for k, picture in enumerate(pictures):
        wide.paste(picture, (k * SIZE, 0))
    wide = crop(wide)
    wide = wide.resize((options.width, options.width * wide.height // wide.width), Image.LANCZOS)
    wide.quantize(256, kmeans=2, dither=Image.Dither.NONE).save(options.target, optimize=True)


main()
