# The folders of src/ that make up tarvex_core, the logic and data without windows. The
# build globs its sources from them and the test that keeps windowing headers out of the
# core checks the same list, so a new subsystem is added here once.
set(TARVEX_CORE_FOLDERS support data exercise shell program picklist print protocol library
    media dbtools link picturebench)
