// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_JNI_LINERECORDS_H_
#define ZVEX_JNI_LINERECORDS_H_

#include <memory>
#include <new>
#include <vector>

#include "foundation/List.h"
#include "text/ZvLineInfo.h"
#include "text/ZvTextObject.h"

namespace Zvex {

// Collects line records for a text object, and owns them until the text object takes them.
class LineRecords {
public:
    ~LineRecords() {
        const int count = mMade ? mList.GetCount() : 0;
        for (int i = 0; i < count; ++i) delete static_cast<ZvLineInfo*>(mList.Get(i));
    }

    // False if memory is short.
    bool make(const std::vector<ZvLineInfo>& lines) {
        mMade = mList.Construct() != 0;
        if (!mMade) return false;
        for (const ZvLineInfo& line : lines) {
            std::unique_ptr<ZvLineInfo> record(new (std::nothrow) ZvLineInfo(line));
            if (record == nullptr || mList.Add(record.get()) == 0) return false;
            static_cast<void>(record.release());
        }
        return true;
    }

    // False, and the text object without lines, if memory is short.
    bool moveInto(ZvTextObject& text) {
        if (!text.SetLineInfo(&mList)) return false;
        mList.RemoveAll();
        return true;
    }

private:
    List mList;
    bool mMade = false;
};

}  // namespace Zvex

#endif  // ZVEX_JNI_LINERECORDS_H_
