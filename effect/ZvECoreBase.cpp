// SPDX-License-Identifier: Apache-2.0
#include "effect/ZvECoreBase.h"

namespace Zvex {

int ZvECoreBase::initEffect(ParamInit*) {
    return 1;
}

int ZvECoreBase::render(ParamRender*) {
    return 1;
}

int ZvECoreBase::doPostProcessing(ParamPostProcessing*) {
    return 0;
}

float ZvECoreBase::getOpacity() {
    return 1.0f;
}

int ZvECoreBase::getStyle() {
    return style;
}

int ZvECoreBase::getLeftOffset() {
    return 0;
}

int ZvECoreBase::getRightOffset() {
    return 0;
}

int ZvECoreBase::getTopOffset() {
    return 0;
}

int ZvECoreBase::getBottomOffset() {
    return 0;
}

void ZvECoreBase::setId(int id_) {
    id = id_;
}

int ZvECoreBase::getId() {
    return id;
}

int ZvECoreBase::getOffset() {
    return 0;
}

}  // namespace Zvex
