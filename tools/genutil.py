"""What the project's generator scripts share."""
import os


def data_lines(path):
    """Yields (line number, line) for each line of path that holds data: the
    line stripped, blank lines and '#' comment lines passed over."""
    with open(path) as f:
        for number, line in enumerate(f, 1):
            line = line.strip()
            if line and not line.startswith("#"):
                yield number, line


def write_if_changed(path, text):
    """Writes text to path unless it already holds exactly that, so that an
    unchanged generated file keeps its time stamp and nothing rebuilds."""
    directory = os.path.dirname(os.path.abspath(path))
    os.makedirs(directory, exist_ok=True)
    if os.path.exists(path):
        with open(path) as f:
            if f.read() == text:
                return
    with open(path, "w") as f:
        f.write(text)
