"""The folder that an image is made of."""


def write(tree, entries):
    tree.mkdir()
    for name, content in entries.items():
        path = tree / name
        path.parent.mkdir(parents=True, exist_ok=True)
        if isinstance(content, str):
            path.symlink_to(content)
        else:
            path.write_bytes(content)
