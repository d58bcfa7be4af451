"""Archives that are the same to the byte whenever, wherever and by whomever they are made."""
import hashlib
import time
import zipfile

CHECKSUMS = "SHA256SUMS"


def files_of(folder):
    """All files below the folder, in an order that no file system and no language changes."""
    return sorted((path for path in folder.rglob("*") if path.is_file()),
                  key=lambda path: path.relative_to(folder).as_posix())


def digest(path, kind="sha256"):
    return hashlib.new(kind, path.read_bytes()).hexdigest()


def write_checksums(folder, files, target):
    """In the form that `sha256sum --check` takes, from inside the folder."""
    lines = [f"{digest(path)}  {path.relative_to(folder).as_posix()}\n" for path in files]
    target.write_text("".join(lines), newline="\n")


def refuse_paths(folder, places):
    """Ends the packaging when a file holds one of the places of the machine that it was built on."""
    needles = [place.encode(code) for place in places for code in ("utf-8", "utf-16-le")]
    for path in files_of(folder):
        content = path.read_bytes()
        for needle in needles:
            if needle in content:
                place = needle.replace(b"\0", b"").decode()
                raise SystemExit(f"package: {path.relative_to(folder)} holds the path {place}")


def write_archive(folder, target, epoch):
    """Zips the folder with its checksums; its own name is the archive's one entry at the top."""
    write_checksums(folder, files_of(folder), folder / CHECKSUMS)
    # A zip's times are local ones without a zone, and none is before 1980.
    moment = time.gmtime(max(epoch, 315532800))[:6]
    with zipfile.ZipFile(target, "w") as archive:
        for path in files_of(folder):
            entry = zipfile.ZipInfo(f"{folder.name}/{path.relative_to(folder).as_posix()}", moment)
            entry.compress_type = zipfile.ZIP_DEFLATED
            # Or it would tell which system made it.
            entry.create_system = 3
            entry.external_attr = (0o100755 if path.suffix in (".exe", ".dll", ".cmd") else 0o100644) << 16
            archive.writestr(entry, path.read_bytes(), compresslevel=9)
