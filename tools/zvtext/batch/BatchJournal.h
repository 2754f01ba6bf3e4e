// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TOOLS_ZVTEXT_BATCH_BATCHJOURNAL_H_
#define ZVEX_TOOLS_ZVTEXT_BATCH_BATCHJOURNAL_H_

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace zvtext {

constexpr char kJournalName[] = ".zvtext-batch";

// Records what a batch has written into a folder: one line for each picture, appended when the picture is
// complete and in place. So a kill costs at most the record of one existing picture. Batches may share the
// folder.
class BatchJournal {
public:
    struct Record {
        std::string job;      // digest of everything that the picture was made from
        std::string content;  // digest of the file
        std::string result;   // JSON on one line
    };

    // A file in the folder, which must be opened before records are found in it.
    explicit BatchJournal(const std::string& folder) : mPath(folder + "/" + kJournalName) {}
    ~BatchJournal();
    BatchJournal(const BatchJournal&) = delete;
    BatchJournal& operator=(const BatchJournal&) = delete;

    // Creates the file if it is missing. With `reads`, finds the records in it, which takes 16 bytes of
    // memory each. Throws Failure.
    void open(bool reads);

    // The job's last record among those that were there when the journal was opened.
    std::optional<Record> find(const std::string& job) const;

    // Opens the file if it is not open. False if it cannot be written.
    bool append(const Record& record);

private:
    void findRecords();

    const std::string mPath;
    int mDescriptor = -1;
    bool mCutShort = false;                              // the last record
    std::vector<std::pair<uint64_t, uint64_t>> mPlaces;  // half of a job's digest, offset; sorted
};

}  // namespace zvtext

#endif  // ZVEX_TOOLS_ZVTEXT_BATCH_BATCHJOURNAL_H_
