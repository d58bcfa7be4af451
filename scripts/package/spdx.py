"""The list of what is in an archive and of what its programs are made from, in SPDX 2.3."""
import datetime
import hashlib
import json
import uuid

from archive import digest, files_of
from components import copyright_of, version_of

UNKNOWN = "NOASSERTION"
UNSTATED = {"licenseConcluded": UNKNOWN, "copyrightText": UNKNOWN}


def file_id(name):
    return f"SPDXRef-File-{hashlib.sha1(name.encode()).hexdigest()}"


def file_entry(folder, path):
    name = path.relative_to(folder).as_posix()
    return {"SPDXID": file_id(name), "fileName": f"./{name}",
            "checksums": [{"algorithm": kind.upper(), "checksumValue": digest(path, kind)}
                          for kind in ("sha1", "sha256")],
            "licenseInfoInFiles": [UNKNOWN], **UNSTATED}


def component_entry(component):
    return {"SPDXID": f"SPDXRef-Package-{component.name}", "name": component.name,
            "versionInfo": version_of(component), "downloadLocation": UNKNOWN, "filesAnalyzed": False,
            "comment": f"Debian package {component.package}",
            "licenseConcluded": component.licence, "licenseDeclared": component.licence, "copyrightText": UNKNOWN}


def own_entry(folder, version, files, excluded):
    ones = "".join(sorted(entry["checksums"][0]["checksumValue"] for entry in files))
    return {"SPDXID": "SPDXRef-Package-tarnhd", "name": "tarnhd", "versionInfo": version,
            "packageFileName": f"{folder.name}.zip", "downloadLocation": UNKNOWN, "filesAnalyzed": True,
            "packageVerificationCode": {
                "packageVerificationCodeValue": hashlib.sha1(ones.encode()).hexdigest(),
                "packageVerificationCodeExcludedFiles": [f"./{name}" for name in excluded]},
            "licenseDeclared": UNKNOWN, "licenseInfoFromFiles": [UNKNOWN], **UNSTATED}


def relation(subject, kind, related):
    return {"spdxElementId": subject, "relationshipType": kind, "relatedSpdxElement": related}


def write_list(folder, version, linked, epoch, excluded):
    """Writes it into the folder, of whose files the excluded ones are not listed. `linked` names the components of
    each program."""
    target = folder / f"{folder.name}.spdx.json"
    excluded = [*excluded, target.name]
    files = [file_entry(folder, path) for path in files_of(folder)]
    own = own_entry(folder, version, files, excluded)
    components = sorted(set(sum(linked.values(), [])), key=lambda component: component.name)
    document = {
        "spdxVersion": "SPDX-2.3", "dataLicense": "CC0-1.0", "SPDXID": "SPDXRef-DOCUMENT", "name": folder.name,
        # Unique for this content, and the same for the same.
        "documentNamespace": uuid.uuid5(uuid.NAMESPACE_OID, json.dumps([own, epoch])).urn,
        "creationInfo": {
            "created": datetime.datetime.fromtimestamp(epoch, datetime.timezone.utc).strftime("%Y-%m-%dT%H:%M:%SZ"),
            "creators": [f"Tool: tarnhd-package-{version}"]},
        "packages": [own, *map(component_entry, components)],
        "files": files,
        "hasExtractedLicensingInfos": [
            {"licenseId": component.licence, "name": component.name, "extractedText": copyright_of(component).decode()}
            for component in components if component.licence.startswith("LicenseRef-")],
        "relationships": [
            relation("SPDXRef-DOCUMENT", "DESCRIBES", own["SPDXID"]),
            *(relation(own["SPDXID"], "CONTAINS", entry["SPDXID"]) for entry in files),
            *(relation(file_id(f"bin/{program}"), "STATIC_LINK", f"SPDXRef-Package-{component.name}")
              for program in sorted(linked) for component in linked[program])]}
    target.write_text(json.dumps(document, indent=2) + "\n", newline="\n")
