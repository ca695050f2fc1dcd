"""Judges drawing files with a reader that shares no code with ours.

make FOLDER            writes drawings of several versions and forms, prints their names
judge NAME...          NAME.after.dxf opens without errors, and has every tag of NAME in order (but for counts and HANDSEED)
show FILE              entities of model space: type, layer, colour, coordinates
"""
import sys

import ezdxf
from ezdxf.lldxf.tagger import ascii_tags_loader, binary_tags_loader


def make(folder):
    for version, forms in (("R12", "asc bin"), ("R2000", "asc bin"), ("R2007", "asc"), ("R2018", "asc bin")):
        doc = ezdxf.new(version, setup=True, units=4)
        doc.layers.add("CUT", color=1)
        msp = doc.modelspace()
        block = doc.blocks.new("PART", base_point=(1, 1))
        block.add_line((0, 0), (5, 0))
        block.add_circle((1, 1), 0.5)
        msp.add_line((0, 0), (10.125, 0), dxfattribs={"layer": "CUT"})
        msp.add_arc((3, 4), 2, 10, 200)
        msp.add_circle((-1, -1), 1.5, dxfattribs={"extrusion": (0, 0, -1)})
        msp.add_point((1, 2, 3))
        msp.add_text("T\u00e4xt", dxfattribs={"height": 2}).set_pos((1, 1), (9, 1), align="ALIGNED")
        insert = msp.add_blockref("PART", (20, 20), dxfattribs={"rotation": 30, "xscale": -2, "yscale": 2})
        insert.add_attrib("TAG", "value", (21, 21))
        msp.add_polyline2d([(0, 0), (5, 0), (5, 5)], format="xy", dxfattribs={"closed": True})
        msp.add_polyline3d([(0, 0, 0), (5, 0, 1), (5, 5, 2)])
        msp.add_3dface([(0, 0), (1, 0), (1, 1), (0, 1)])
        if version != "R12":
            msp.add_lwpolyline([(0, 0, 0, 0, 0.5), (8, 0, 0.2, 0.2, 0), (8, 8, 0, 0, -1)], close=True)
            msp.add_ellipse((0, 0), (5, 1), 0.4, 0.5, 3)
            msp.add_spline([(0, 0), (4, 5), (9, 0), (12, 4)])
            msp.add_open_spline([(0, 0), (4, 5), (9, 0), (12, 4), (15, 5)])
            msp.add_ray((1, 1), (0, 1))
            msp.add_xline((1, 1), (0, 1))
            msp.add_mtext("many\\Pwords \u00e4", dxfattribs={"char_height": 1})
            hatch = msp.add_hatch(color=2)
            hatch.paths.add_polyline_path([(0, 0), (10, 0), (10, 10)], is_closed=True)
            msp.add_linear_dim(base=(0, 5), p1=(0, 0), p2=(10, 0)).render()
            doc.layout("Layout1").add_line((0, 0), (1, 1))
        for fmt in forms.split():
            name = f"{folder}/{version}-{fmt}.dxf"
            doc.saveas(name, fmt=fmt)
            print(name)


def tags(name):
    data = open(name, "rb").read()
    if data[:18] == b"AutoCAD Binary DXF":
        return [(t.code, str(t.value)) for t in binary_tags_loader(data)]
    encoding = "utf8" if any(v in data[:400] for v in (b"AC1021", b"AC1024", b"AC1027", b"AC1032")) else "cp1252"
    import io
    return [(t.code, t.value.strip()) for t in ascii_tags_loader(io.StringIO(data.decode(encoding), newline=None), False)]


def audit(name):
    doc = ezdxf.readfile(name)
    auditor = doc.audit()
    for error in auditor.errors + auditor.fixes:
        print(f"{name}: {error.code} {error.message}")
    return doc, len(auditor.errors) + len(auditor.fixes)


def check(before, after):
    _, standing = audit(before)
    _, now = audit(after)
    old, new = tags(before), tags(after)
    at, seed, lost = 0, False, []
    for i, tag in enumerate(old):
        volatile = seed or tag[0] == 70 and old[i - 1][0] in (100, 330, 5, 2)
        seed = tag == (9, "$HANDSEED")
        try:
            at = new.index(tag, at, at + (1 if volatile else 2000)) + 1
        except ValueError:
            if volatile:
                at += 1
            else:
                lost.append(tag)
    for tag in lost[:20]:
        print("lost:", tag)
    print("faults:", max(0, now - standing) + len(lost))


def show(name):
    doc, errors = audit(name)
    for e in doc.modelspace():
        points = ""
        if e.dxftype() == "LWPOLYLINE":
            points = " ".join(f"{x:.9g},{y:.9g},{b:.9g}" for x, y, b in e.get_points("xyb"))
        elif e.dxftype() == "POLYLINE":
            points = " ".join(f"{v.dxf.location.x:.9g},{v.dxf.location.y:.9g},{v.dxf.bulge:.9g}" for v in e.vertices)
        elif e.dxftype() == "LINE":
            points = f"{e.dxf.start.x:.9g},{e.dxf.start.y:.9g} {e.dxf.end.x:.9g},{e.dxf.end.y:.9g}"
        print(e.dxftype(), e.dxf.layer, e.dxf.color, points)
    print("errors:", errors)


def judge(*names):
    """Of each pair NAME, NAME.after.dxf: a line with the name, then check and show."""
    for name in names:
        print("==", name)
        check(name, name + ".after.dxf")
        show(name + ".after.dxf")


if __name__ == "__main__":
    {"make": make, "judge": judge, "show": show}[sys.argv[1]](*sys.argv[2:])
