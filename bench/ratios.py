"""Prints the medians of a Google Benchmark JSON file and the ratios to the floors."""
import json
import sys

FLOORS = {
    "BM_LoadLibraryCache": "BM_BareLibraryRead",
    "BM_SaveProgram": "BM_SaveProgramFloor",
    "BM_LoadProgram": "BM_LoadProgramFloor",
    "BM_ReloadChoices": "BM_ReloadChoicesFloor",
    "BM_PdfTwoAPage": "BM_DecodeAndScalePictures",
    "BM_PreviewZoomStep": "BM_DecodeAndScalePictures",
    "BM_FillcboProtocol": "BM_FillcboProtocolFloor",
    "BM_LoadLstProtocol": "BM_LoadLstProtocolFloor",
    "BM_InitSelExsFromProtocol": "BM_InitSelExsFromProtocolFloor",
    "BM_StoreProtocol": "BM_StoreProtocolFloor",
    "BM_FillLibraryList": "BM_FillLibraryListFloor",
    "BM_FillLibraryListSorted": "BM_FillLibraryListFloor",
    "BM_MakeIcon": "BM_MakeIconFloor",
    "BM_PokeRoundTrip": "BM_PokeRoundTripFloor",
    "BM_OpenCropSave12MP": "BM_OpenCropSave12MPFloor",
    "BM_CopyDeliveredMedia": "BM_CopyDeliveredMediaFloor",
    "BM_Compress": "BM_CompressFloor",
    "BM_Backup": "BM_BackupFloor",
    "BM_SaveProgramOnServer": "BM_SaveProgramOnFile",
    "BM_LoadProgramOnServer": "BM_LoadProgramOnFile",
}
TARGETS = {
    "BM_LoadLibraryCache": "within 2x of the floor",
    "BM_Startup/32767": "under 500 ms",
    "BM_SaveProgram": "within 2x of the floor, under 20 ms",
    "BM_LoadProgram": "within 2x of the floor, under 20 ms",
    "BM_FillPatientList": "under 200 ms",
    "BM_FilterClick": "under 150 ms",
    "BM_ScrollStep": "under 20 ms",
    "BM_ScrollWholePane": "no step over 50 ms",
    "BM_ReloadChoices": "within 2x of the floor",
    "BM_DeliveredWorkspacePeakMemory": "peak under 150 MB",
    "BM_PdfTwoAPage": "under 1 s, within 3x of the floor",
    "BM_PreviewZoomStep": "under 0.5 s, within 3x of the floor",
    "BM_FillcboProtocol": "within 2x of the floor, under 50 ms",
    "BM_LoadLstProtocol": "within 2x of the floor, under 50 ms",
    "BM_InitSelExsFromProtocol": "within 2x of the floor, under 50 ms",
    "BM_StoreProtocol": "within 2x of the floor, under 50 ms",
    "BM_LoadPicklistTree": "under 200 ms",
    "BM_SavePicklistTree": "under 200 ms",
    "BM_FillLibraryList": "under 300 ms",
    "BM_FillLibraryListSorted": "under 300 ms",
    "BM_LeaveLibrary": "under 1 s",
    "BM_MakeIcon/0": "under 50 ms",
    "BM_MakeIcon/1": "under 800 ms",
    "BM_PokeRoundTrip": "median under 2 ms",
    "BM_NoticeArrival": "median under 2 ms",
    "BM_OpenCropSave12MP": "under 1 s",
    "BM_CopyDeliveredMedia": "within 1.2x of the floor (cp -r)",
    "BM_OpenHelpWindow": "under 300 ms",
    "BM_UpgradeWalkFromBeforeVersionTable": "under 60 s",
    "BM_Compress": "within 1.2x of the floor (sqlite3 VACUUM INTO)",
    "BM_Backup": "within 1.25x of the floor (zip)",
    "BM_Restore": "under 5 s",
    "BM_SaveProgramOnServer": "under 20 ms (the floor is the same save on a file)",
    "BM_LoadProgramOnServer": "under 20 ms (the floor is the same load on a file)",
    "BM_TenWorkstations": "slowest save under 20 ms",
}

with open(sys.argv[1]) as f:
    runs = json.load(f)["benchmarks"]
def name_of(run):
    return run["run_name"].split("/repeats:")[0]


medians = {name_of(r): r["real_time"] for r in runs if r.get("aggregate_name") == "median"}
# Benchmarks run once have no aggregates: their single run stands for the median.
for r in runs:
    if r.get("run_type") == "iteration" and name_of(r) not in medians and r.get("repetitions", 1) <= 1:
        medians[name_of(r)] = r["real_time"]
counters = {name_of(r): {k: v for k, v in r.items() if k.endswith(("_MB", "_ms", "_per_s"))} for r in runs}
unit = {name_of(r): r["time_unit"] for r in runs}
for name, ms in sorted(medians.items()):
    line = f"{name:32s} median {ms:9.2f} {unit[name]}"
    base, sep, arg = name.partition("/")
    if base in FLOORS:
        floor = medians.get(FLOORS[base] + sep + arg)
        if floor:
            line += f"   ratio to floor {ms / floor:5.2f}"
    for key, value in sorted(counters.get(name, {}).items()):
        line += f"   {key} {value:.1f}"
    target = TARGETS.get(name) or TARGETS.get(base)
    if target:
        line += f"   (target: {target})"
    print(line)
