// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_EFFECT_ZVECOREBASE_H_
#define ZVEX_EFFECT_ZVECOREBASE_H_

#include "effect/ZvECore.h"
#include "foundation/OutOfMemory.h"

namespace Zvex {

// A layer that draws nothing and needs no room: the base of every effect class. A concrete class sets `style`
// to its type number and adds `property`, an owned pointer to its record.
class ZvECoreBase : public ZvECore {
public:
    int style = ZV_EFFECT_NONE;
    int id = -1;

    ZvECoreBase() = default;
    ZvECoreBase(const ZvECoreBase&) = delete;
    ZvECoreBase& operator=(const ZvECoreBase&) = delete;
    ~ZvECoreBase() override = default;

    int initEffect(ParamInit* param) override;
    int render(ParamRender* param) override;
    int doPostProcessing(ParamPostProcessing* param) override;
    void setProperty(ZvProperty* property) override = 0;
    ZvProperty* getProperty() override = 0;
    float getOpacity() override;  // 1
    int getStyle() override;
    int getLeftOffset() override;  // this and the other margins: 0
    int getRightOffset() override;
    int getTopOffset() override;
    int getBottomOffset() override;
    void setId(int id) override;
    int getId() override;
    int getOffset() override;

protected:
    // For setProperty of layers whose record owns nothing. *record, owned and null at first, becomes a copy
    // of `settings`; `settings` may be the old record. False, with the old record kept, if memory is short.
    template <typename Property>
    static bool replaceProperty(const Property& settings, Property** record) {
        auto copy = tryMake<Property>(settings);
        if (copy == nullptr) return false;
        delete *record;
        *record = copy.release();
        return true;
    }
};

}  // namespace Zvex

#endif  // ZVEX_EFFECT_ZVECOREBASE_H_
