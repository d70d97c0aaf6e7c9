# SPDX-License-Identifier: MIT
# The independent DXF reader of the DXF tests: audits files we write and writes the files
# our reader is checked against, with ezdxf's own evaluation of every entity.
#   ezdxf_peer.py audit FILE          -> JSON: audit errors and the entities read back
#   ezdxf_peer.py make VERSION FILE   -> writes a sample drawing; JSON: per modelspace
#                                        entity the flattened paths after block transforms
#   ezdxf_peer.py random SEED N FILE  -> writes N random entities with random styles
import json
import math
import random
import sys

import ezdxf
from ezdxf import disassemble, path
from ezdxf.enums import TextEntityAlignment


# The list each entity type read back goes to, and what is listed of it.
AUDITED = {
    "LINE": ("lines", lambda e: [e.dxf.start.x, e.dxf.start.y, e.dxf.end.x, e.dxf.end.y]),
    "POLYLINE": ("vertices", lambda e: [[v.dxf.location.x, v.dxf.location.y] for v in e.vertices]),
    "ARC": ("arcs", lambda e: [e.dxf.center.x, e.dxf.center.y, e.dxf.radius, e.dxf.start_angle,
                               e.dxf.end_angle]),
    "CIRCLE": ("circles", lambda e: [e.dxf.center.x, e.dxf.center.y, e.dxf.radius]),
    "TEXT": ("texts", lambda e: [e.dxf.insert.x, e.dxf.insert.y, e.dxf.height, e.dxf.rotation,
                                 e.dxf.text]),
}


def audit(name):
    doc = ezdxf.readfile(name)
    out = {"errors": len(doc.audit().errors)} | {key: [] for key, _ in AUDITED.values()}
    for e in doc.modelspace():
        if e.dxftype() in AUDITED:
            key, listed = AUDITED[e.dxftype()]
            out[key].append(listed(e))
    print(json.dumps(out))


def sample(version, name):
    doc = ezdxf.new(version)
    doc.header["$INSUNITS"] = 4
    doc.layers.add("walls", color=1)
    doc.layers.add("hidden", color=5).off()
    doc.layers.add("doors", true_color=ezdxf.rgb2int((10, 200, 30)))
    msp = doc.modelspace()
    msp.add_line((10, 10), (60, 25), dxfattribs={"layer": "walls"})
    msp.add_point((5, 5), dxfattribs={"color": 3})
    msp.add_circle((40, 40), 12, dxfattribs={"layer": "hidden"})
    msp.add_arc((80, 40), 15, 30, 200, dxfattribs={"color": 5})
    msp.add_solid([(0, 80), (20, 80), (0, 95), (20, 95)])
    msp.add_trace([(30, 80), (50, 80), (30, 90), (50, 92)])
    msp.add_3dface([(60, 80, 0), (75, 80, 0), (70, 95, 0)])
    msp.add_text("Plan A", dxfattribs={"height": 5, "rotation": 30, "insert": (100, 10)})
    if version == "R12":
        msp.add_polyline2d([(100, 60, 0, 0, 0.5), (130, 60, 0, 0, 0), (130, 80, 0, 0, -1)],
                           format="xyseb", close=True, dxfattribs={"layer": "doors"})
    else:
        msp.add_ellipse((150, 50), major_axis=(20, 10), ratio=0.5)
        msp.add_ellipse((150, 100), major_axis=(0, 15), ratio=0.4, start_param=0.3,
                        end_param=2.5)
        msp.add_lwpolyline([(100, 60, 0, 0, 0.5), (130, 60, 0, 0, 0), (130, 80, 0, 0, -1)],
                           format="xyseb", close=True, dxfattribs={"layer": "doors"})
        msp.add_lwpolyline([(0, 120), (20, 130), (40, 120)], format="xy")
        msp.add_open_spline([(0, 150), (20, 170), (40, 140), (60, 160), (80, 150)])
        msp.add_open_spline([(100, 150), (120, 170), (140, 140), (160, 165)], degree=2)
        msp.add_rational_spline([(180, 150), (200, 180), (220, 150)], weights=[1, 2, 1],
                                degree=2)
        msp.add_mtext("First line\\PSecond {\\H2x;line}", dxfattribs={
            "char_height": 4, "insert": (200, 10), "rotation": 15})
        hatch = msp.add_hatch(color=2)
        hatch.paths.add_polyline_path([(200, 60), (240, 60), (240, 90), (200, 90)],
                                      is_closed=True)
        edges = hatch.paths.add_edge_path()
        edges.add_line((250, 60), (280, 60))
        edges.add_arc((280, 75), 15, -90, 90)
        edges.add_line((280, 90), (250, 90))
        edges.add_line((250, 90), (250, 60))
    # Bulged polylines: open with straight runs between arcs, a closed pair of half turns
    # (a circle), and a closed one in a turned and scaled block.
    mixed = [(350, 20, 0, 0, 0), (365, 20, 0, 0, 0), (380, 25, 0, 0, 0.4), (400, 25, 0, 0, 0),
             (410, 40, 0, 0, -0.7), (430, 40, 0, 0, 2.5), (440, 50)]
    ring = [(350, 60, 0, 0, 1), (370, 60, 0, 0, 1)]
    slot = [(0, 0, 0, 0, 0), (20, 0, 0, 0, 1), (20, 8, 0, 0, 0), (0, 8, 0, 0, 1)]
    round_block = doc.blocks.new("ROUND")
    polyline = "add_polyline2d" if version == "R12" else "add_lwpolyline"
    getattr(msp, polyline)(mixed, format="xyseb")
    getattr(msp, polyline)(ring, format="xyseb", close=True)
    getattr(round_block, polyline)(slot, format="xyseb", close=True)
    if version != "R12":
        # Half an ellipse (an arc shape) and a quarter turn of one (Bezier pieces).
        msp.add_ellipse((400, 90), major_axis=(12, 5), ratio=0.4, start_param=0.4,
                        end_param=0.4 + math.pi)
        msp.add_ellipse((430, 90), major_axis=(-4, 10), ratio=0.6, start_param=5.5,
                        end_param=0.9)
    msp.add_blockref("ROUND", (360, 100), dxfattribs={"rotation": 20, "xscale": 1.5,
                                                       "yscale": 1.5})
    inner = doc.blocks.new("INNER", base_point=(1, 1))
    inner.add_line((1, 1), (6, 1), dxfattribs={"color": 0})
    inner.add_circle((4, 4), 2)
    inner.add_arc((1, 1), 3, 0, 90)
    outer = doc.blocks.new("OUTER")
    outer.add_blockref("INNER", (10, 0), dxfattribs={"xscale": 2, "yscale": 1,
                                                      "rotation": 45})
    getattr(outer, polyline)([(0, 0), (10, 0), (10, 5)])
    msp.add_blockref("OUTER", (50, 150), dxfattribs={"rotation": 30, "xscale": 1.5,
                                                      "yscale": 1.5, "color": 6,
                                                      "layer": "walls"})
    msp.add_blockref("INNER", (300, 10), dxfattribs={"xscale": -1, "yscale": 1})
    arr = msp.add_blockref("INNER", (300, 100))
    arr.grid(size=(2, 3), spacing=(20, 15))
    doc.saveas(name)
    print(json.dumps(expect(ezdxf.readfile(name))))


def random_drawing(seed, count, name):
    """A drawing of the entities the reader decodes itself, mixed with others, with random
    styles, in blocks too."""
    rnd = random.Random(seed)
    doc = ezdxf.new(rnd.choice(["R12", "R2000", "R2018"]))
    for i in range(4):
        doc.layers.add("L%d" % i, color=i + 1)
    block = doc.blocks.new("B")
    msp = doc.modelspace()
    for i in range(count):
        space = block if i % 10 == 9 else msp
        x, y = rnd.uniform(-100, 500), rnd.uniform(-100, 500)
        a = {"layer": "L%d" % rnd.randrange(4)}
        if rnd.random() < 0.3:
            a["color"] = rnd.randrange(0, 257)
        if doc.dxfversion > "AC1009" and rnd.random() < 0.3:
            a["true_color"] = rnd.randrange(0, 1 << 24)
        if doc.dxfversion > "AC1009" and rnd.random() < 0.3:
            a["lineweight"] = rnd.choice([-3, -2, -1, 0, 13, 50, 211])
        k = rnd.randrange(10)
        if k == 0:
            space.add_line((x, y), (x + rnd.uniform(-50, 50), y + rnd.uniform(-50, 50)), dxfattribs=a)
        elif k == 1:
            space.add_point((x, y), dxfattribs=a)
        elif k == 2:
            space.add_circle((x, y), rnd.uniform(0.1, 40), dxfattribs=a)
        elif k == 3:
            space.add_arc((x, y), rnd.uniform(0.1, 40), rnd.uniform(-360, 360), rnd.uniform(-360, 360), dxfattribs=a)
        elif k == 4:
            pts = [(x + rnd.uniform(-20, 20), y + rnd.uniform(-20, 20), 0, 0, rnd.choice([0, 0, rnd.uniform(-3, 3)]))
                   for _ in range(rnd.randrange(1, 7))]
            add = space.add_lwpolyline if doc.dxfversion > "AC1009" else space.add_polyline2d
            add(pts, format="xyseb", close=rnd.random() < 0.5, dxfattribs=a)
        elif k == 5:
            text = space.add_text(rnd.choice(["A", "%%d 1", "x y ", "\\U+00e9"]), dxfattribs=dict(
                a, height=rnd.uniform(0.5, 9), rotation=rnd.uniform(-400, 400)))
            text.set_placement((x, y), (x + 3, y + 1), rnd.choice(list(TextEntityAlignment)))
        elif k == 6:
            space.add_ellipse((x, y), major_axis=(rnd.uniform(1, 9), rnd.uniform(1, 9)), ratio=0.5,
                              start_param=rnd.uniform(0, 6), end_param=rnd.uniform(0, 6), dxfattribs=a) \
                if doc.dxfversion > "AC1009" else space.add_circle((x, y), 1, dxfattribs=a)
        elif k == 7:
            msp.add_blockref("B", (x, y), dxfattribs=dict(a, rotation=rnd.uniform(0, 90)))
        elif k == 8:
            space.add_solid([(x, y), (x + 5, y), (x, y + 5)], dxfattribs=a)
        else:
            # The POLYLINE of older files in every version: flat, 3D, and the meshes the
            # reader skips with their vertices.
            pts = [(x + rnd.uniform(-20, 20), y + rnd.uniform(-20, 20), rnd.uniform(-5, 5))
                   for _ in range(4)]
            kind = rnd.randrange(4)
            if kind == 0:
                space.add_polyline2d([(p[0], p[1], 0, 0, rnd.choice([0, rnd.uniform(-2, 2)])) for p in pts],
                                     format="xyseb", close=rnd.random() < 0.5, dxfattribs=a)
            elif kind == 1:
                space.add_polyline3d(pts, close=rnd.random() < 0.5, dxfattribs=a)
            elif kind == 2:
                space.add_polyface(dxfattribs=a).append_face(pts)
            else:
                mesh = space.add_polymesh((2, 2), dxfattribs=a)
                for i, p in enumerate(pts):
                    mesh.set_mesh_vertex((i // 2, i % 2), p)
    doc.saveas(name)
    print("{}")


def flat(e):
    # Circles, arcs and ellipses by their own exact evaluation (a path would hold them as
    # Bezier approximations, a few ten-thousandths of the radius off).
    if e.dxftype() in ("CIRCLE", "ARC", "ELLIPSE"):
        return [[v.x, v.y] for v in e.flattening(0.0002)]
    try:
        p = path.make_path(e)
    except TypeError:
        return None
    return [[v.x, v.y] for v in p.flattening(0.0005, segments=16)]


def pieces(polyline):
    """The polyline's arcs and the straight runs between them, in order; a closed one's
    last run continues into its first."""
    out = []
    for ve in polyline.virtual_entities():
        if ve.dxftype() == "LINE":
            end = [ve.dxf.end.x, ve.dxf.end.y]
            if out and out[-1]["kind"] == "chain":
                out[-1]["points"].append(end)
            else:
                out.append({"kind": "chain", "points": [[ve.dxf.start.x, ve.dxf.start.y], end]})
        else:
            out.append({"kind": "arc", "points": flat(ve), "radius": ve.dxf.radius,
                        "centre": list(ve.ocs().to_wcs(ve.dxf.center))[:2]})
    if polyline.is_closed and len(out) > 1 and out[0]["kind"] == out[-1]["kind"] == "chain":
        out[0]["points"] = out.pop()["points"] + out[0]["points"][1:]
    return out


def expect(doc):
    out = {"entities": []}
    for e in doc.modelspace():
        item = {"type": e.dxftype(), "leaves": []}
        for leaf in disassemble.recursive_decompose([e]):
            t = leaf.dxftype()
            entry = {"type": t}
            if t in ("TEXT", "MTEXT"):
                entry["text"] = leaf.plain_text() if t == "MTEXT" else leaf.dxf.text
                entry["rotation"] = leaf.get_rotation() if t == "MTEXT" else leaf.dxf.rotation
            elif t == "POINT":
                entry["points"] = [list(leaf.dxf.location)[:2]]
            elif t == "HATCH":
                entry["loops"] = [[[v.x, v.y] for v in p.flattening(0.0005, segments=16)]
                                  for p in path.from_hatch(leaf)]
            else:
                entry["points"] = flat(leaf)
                if t == "ARC":
                    entry["centre"] = list(leaf.ocs().to_wcs(leaf.dxf.center))[:2]
                    entry["radius"] = leaf.dxf.radius
                elif t == "ELLIPSE":
                    entry["sweep"] = (leaf.dxf.end_param - leaf.dxf.start_param) % math.tau
                elif t in ("LWPOLYLINE", "POLYLINE") and any(
                        v.dxftype() == "ARC" for v in leaf.virtual_entities()):
                    entry["pieces"] = pieces(leaf)
            item["leaves"].append(entry)
        out["entities"].append(item)
    return out


if __name__ == "__main__":
    if sys.argv[1] == "audit":
        audit(sys.argv[2])
    elif sys.argv[1] == "random":
        random_drawing(int(sys.argv[2]), int(sys.argv[3]), sys.argv[4])
    else:
        sample(sys.argv[2], sys.argv[3])
