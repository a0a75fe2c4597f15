#!/usr/bin/env python3
"""The smallest host in Python: what does the map shop offer around Mont Blanc?

minimal.py [PATH OF nvsupport.so]
"""
import ctypes
import sys


class MapShopPoint(ctypes.Structure):
    _fields_ = [("latitude", ctypes.c_double), ("longitude", ctypes.c_double)]


class MapShopItem(ctypes.Structure):
    _fields_ = [
        ("firstValue", ctypes.c_int32),
        ("title", ctypes.c_char * 200),
        ("shortText", ctypes.c_char * 100),
        ("fileReference", ctypes.c_char * 1000),
        ("secondValue", ctypes.c_int32),
    ]


def load(path):
    module = ctypes.CDLL(path)
    # Without these, ctypes would cut the handle to 32 bits.
    module.NSMapShopSearch.argtypes = [ctypes.POINTER(MapShopPoint), ctypes.c_int32]
    module.NSMapShopSearch.restype = ctypes.c_void_p
    module.NSMapShopGetNext.argtypes = [ctypes.c_void_p, ctypes.POINTER(MapShopItem)]
    module.NSMapShopGetNext.restype = ctypes.c_bool
    module.NSMapShopClose.argtypes = [ctypes.c_void_p]
    module.NSMapShopClose.restype = ctypes.c_int32
    return module


def search(module, points):
    area = (MapShopPoint * len(points))(*points)
    products = module.NSMapShopSearch(area, len(area))
    try:
        item = MapShopItem()
        while module.NSMapShopGetNext(products, item):
            yield item.title.decode(errors="replace"), item.fileReference.decode(errors="replace")
    finally:
        module.NSMapShopClose(products)


def main():
    path = sys.argv[1] if len(sys.argv) > 1 else "./nvsupport.so"
    try:
        module = load(path)
    except OSError as error:
        sys.exit(f"minimal.py: {error}\nusage: minimal.py [PATH OF nvsupport.so, else ./nvsupport.so]")
    products = list(search(module, [(45.8, 6.8), (46.0, 7.0)]))
    for title, file_reference in products:
        print(f"{title}: {file_reference}")
    if not products:
        print("There are no products for this area, or the map shop is out of reach.")


if __name__ == "__main__":
    main()
