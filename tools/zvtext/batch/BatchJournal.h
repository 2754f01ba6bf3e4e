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

// What a batch has written into a folder: one line for each picture, appended when the picture is whole and
// in its place, so that a kill at any moment costs at most the line of a picture that is there. Batches may
// share the folder.
class BatchJournal {
public:
    struct Record {
        std::string job;      // digest of all that the picture was made from
        std::string content;  // digest of the file
        std::string result;   // JSON, of one line
    };

    // Opens the folder's journal, making it when missing; with `reads`, finds the records in it: 16 bytes of
    // memory each. Throws Failure.
    BatchJournal(const std::string& folder, bool reads);
    ~BatchJournal();
    BatchJournal(const BatchJournal&) = delete;
    BatchJournal& operator=(const BatchJournal&) = delete;

    int descriptor() const { return mDescriptor; }

    // The last record of the job among those there when the journal was opened.
    std::optional<Record> find(const std::string& job) const;

    // False where the disk did not take it.
    bool append(const Record& record);

private:
    void findRecords();

    int mDescriptor = -1;
    bool mCutShort = false;                              // the last record
    std::vector<std::pair<uint64_t, uint64_t>> mPlaces;  // half of a job's digest, offset; sorted
};

}  // namespace zvtext

#endif  // ZVEX_TOOLS_ZVTEXT_BATCH_BATCHJOURNAL_H_
