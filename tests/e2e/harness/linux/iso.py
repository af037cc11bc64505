"""ISO 9660 images that no tool would write, made from sound ones."""


def renamed(image, old, new):
    """Exchanges a Rock Ridge name for one of the same length that no tool would write."""
    old, new = old.encode(), new.encode()
    assert len(old) == len(new) and old in image
    return image.replace(old, new)


def with_size(image, name, size):
    """Claims this size for the file of this (upper-case, plain ISO) name."""
    place = image.index(name.encode()) - 33
    number = size.to_bytes(4, "little") + size.to_bytes(4, "big")
    return image[:place + 10] + number + image[place + 18:]


def with_extent(image, name, sector):
    """Claims that the file's content begins at this sector."""
    place = image.index(name.encode()) - 33
    number = sector.to_bytes(4, "little") + sector.to_bytes(4, "big")
    return image[:place + 2] + number + image[place + 10:]
