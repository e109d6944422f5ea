package com.qr.common.font;

/**
 * Holder of the library's self-test entry. On a device it starts and stops
 * the font manager on fixed sdcard paths and logs the outcome.
 */
public class MainActivity {
    public native void testFont();
}
