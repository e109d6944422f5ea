package com.zentra.office.common;

/**
 * Entry points of libkelfont's font manager for Java hosts.
 *
 * <p>Call {@link #setSharedFontPath} and {@link #setUserFontPath} first, then
 * {@link #initialize}; {@link #uninitialize} destroys the manager again.
 */
public final class KelFont {
    static {
        System.loadLibrary("kelfont");
    }

    private KelFont() {}

    /**
     * Creates and initialises the process-wide font manager.
     *
     * @param extractPath directory into which the default data package is extracted
     * @param qrfontZipPath directory that holds "qrfont.zip"; the font cache is kept under it
     * @return whether initialisation succeeded; false when either argument is null
     */
    public static native boolean initialize(String extractPath, String qrfontZipPath);

    /** Destroys the font manager; does nothing when there is none. */
    public static native void uninitialize();

    /** Sets the shared font directory scanned by the next {@link #initialize}. */
    public static native void setSharedFontPath(String path);

    /** Sets the user font directory scanned by the next {@link #initialize}. */
    public static native void setUserFontPath(String path);
}
