// SPDX-License-Identifier: Apache-2.0
import static org.junit.jupiter.api.Assertions.assertDoesNotThrow;

import com.orvane.android.sdk.zve.ZvLibrary;
import org.junit.jupiter.api.Test;

final class LibraryTest {
    @Test
    void loadsOnceAndAgain() {
        ZvLibrary.load();
        assertDoesNotThrow(ZvLibrary::load);
    }
}
