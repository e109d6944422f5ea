import com.zentra.office.common.KelFont;

import java.io.IOException;
import java.nio.file.Files;
import java.nio.file.Path;
import java.nio.file.Paths;

/**
 * Drives the Java native methods in a real JVM, in the empty folder given
 * (removed by the caller). The caller checks the log lines the library
 * writes to standard error.
 */
public final class KelFontJniTest {
    private static int failures = 0;

    private static void check(boolean condition, String what) {
        System.out.println((condition ? "ok: " : "FAILED: ") + what);
        if (!condition) failures++;
    }

    public static void main(String[] args) throws IOException {
        Path root = Paths.get(args[0]);
        Path fonts = Files.createDirectories(root.resolve("fonts"));
        Path storage = Files.createDirectories(root.resolve("storage"));
        String storagePath = storage.toString() + "/";

        // The second argument is the package (and cache) folder.
        check(!KelFont.initialize(storagePath, null), "initialize(x, null) is false");
        check(!KelFont.initialize(null, storagePath), "initialize(null, x) is false");

        KelFont.setSharedFontPath(fonts.toString() + "/");
        KelFont.setUserFontPath(null);
        check(KelFont.initialize(storagePath, storagePath), "initialize(extract, package) is true");
        check(Files.isRegularFile(storage.resolve("FInfo/Ftable")), "the cache table was written");
        KelFont.uninitialize();
        KelFont.uninitialize();
        System.out.println(failures == 0 ? "1 passed, 0 failed" : "0 passed, 1 failed");
        System.exit(failures == 0 ? 0 : 1);
    }
}
