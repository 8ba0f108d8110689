#!/usr/bin/env python3
"""Renders coloured PLYs of `undercut` side by side to a PNG, for the documents.

    ./undercut demo
    docs/make_picture.py demo/depth.ply demo/regions.ply docs/regions.png

Needs numpy and Pillow. Parallel projection, a z-buffer, one light; the file's Y is up.
"""
import sys

import numpy as np
from PIL import Image

SIZE, SCALE = 900, 2  # pixels, and samples along each side of one
AZIMUTH, HEIGHT = -40, -25  # of the eye, degrees
DARK, LIGHT = 90, 225  # what is in no region of interest is drawn light


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
    return points[:, [2, 0, 1]], faces["v"], colours


def view(azimuth, height):
    a, h = np.radians(azimuth), np.radians(height)
    away = np.array([np.cos(h) * np.cos(a), np.cos(h) * np.sin(a), np.sin(h)])
    right = np.array([-np.sin(a), np.cos(a), 0])
    return np.array([right, np.cross(away, right), away])


def render(points, faces, colours, turn):
    p = points @ turn.T
    low, high = p.min(axis=0), p.max(axis=0)
    size = SIZE * SCALE
    scale = 0.92 * size / max(high[0] - low[0], high[1] - low[1])
    p = (p - (low + high) / 2) * scale
    x, y, z = p[:, 0] + size / 2, size / 2 - p[:, 1], p[:, 2]
    a, b, c = (p[faces[:, k]] for k in range(3))
    normal = np.cross(b - a, c - a)
    normal /= np.maximum(np.linalg.norm(normal, axis=1, keepdims=True), 1e-30)
    light = np.array([0.35, 0.55, 0.76])
    shade = 0.35 + 0.65 * np.clip(normal @ light, 0, 1)
    image = np.full((size, size, 3), 255.0)
    depth = np.full((size, size), -np.inf)
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
    return Image.fromarray(image.astype(np.uint8)).resize((SIZE, SIZE), Image.LANCZOS)


def main():
    *parts, target = sys.argv[1:]
    pictures = [render(*read_ply(part), view(AZIMUTH, HEIGHT)) for part in parts]
    wide = Image.new("RGB", (len(parts) * SIZE, SIZE), "white")
    for k, picture in enumerate(pictures):
        wide.paste(picture, (k * SIZE, 0))
    wide.resize((SIZE, SIZE // len(parts)), Image.LANCZOS).save(target, optimize=True)


main()
