// SPDX-License-Identifier: Apache-2.0
// Loads the shared library into a real JVM, twice, as a class loader may: java LoadTest.java PATH
final class LoadTest {
    public static void main(String[] arguments) {
        System.load(arguments[0]);
        System.load(arguments[0]);
        System.out.println("loaded");
    }
}
