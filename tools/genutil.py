"""What the project's generator scripts share."""
import os


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
