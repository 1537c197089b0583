#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

// One import: brings the photos of the stored folders, with their sub-folders, into the saver's
// photo folder as JPEG copies that the import's own index lists, and removes the copies whose
// sources are gone. Runs on any thread that has a COM apartment; two runs, of the tray and of
// "Lumivane.exe --import", take turns.

// What a run did.
struct ImportOutcome {
    bool ran = false;         // the run went through (false: stopped, or no imaging component)
    size_t photos = 0;        // the copies in the photo folder now
    uint64_t bytes = 0;       // and the disk they take
    size_t written = 0;       // copies written or replaced by this run
    bool firstPhotos = false; // the folder had none of our copies before this run, and has now
};

// Runs one import. `progress` gets (done, total) as photos are written, on the running thread;
// `stop` ends the run between two photos, with what is done kept.
ImportOutcome RunImport(const std::function<void(size_t done, size_t total)>& progress,
                        const std::atomic<bool>& stop);

// The folders that a change in should bring a new run: the stored photo folders.
std::vector<std::wstring> ImportFolders();

// The user's Pictures folder, the first photo folder of a new user; empty if there is none.
std::wstring PicturesFolder();
