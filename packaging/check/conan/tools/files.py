import fnmatch
import pathlib
import shutil


def load(_recipe, path):
    return pathlib.Path(path).read_text(encoding="utf-8")


def copy(_recipe, pattern, src, dst):
    source = pathlib.Path(src)
    found = [path for path in source.glob(pattern.replace("/*", "/**/*")) if path.is_file()]
    assert found, f"nothing to copy: {pattern}"
    for path in found:
        place = pathlib.Path(dst) / path.relative_to(source)
        place.parent.mkdir(parents=True, exist_ok=True)
        shutil.copy2(path, place)


def rm(_recipe, pattern, folder):
    for path in pathlib.Path(folder).iterdir():
        if fnmatch.fnmatch(path.name, pattern):
            path.unlink()


def rmdir(_recipe, path):
    shutil.rmtree(path, ignore_errors=True)
