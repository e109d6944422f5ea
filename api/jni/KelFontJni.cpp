// Java native methods of com.zentra.office.common.KelFont and the self-test
// entry of com.qr.common.font.MainActivity.

#include <jni.h>

#include "api/kelfont.h"
#include "base/Log.h"

namespace {

// A Java string as modified UTF-8 for the duration of one call; a null
// string stays a null pointer.
class JavaUtf8 {
 public:
  JavaUtf8(JNIEnv* env, jstring text)
      : env_(env), text_(text), chars_(text != nullptr ? env->GetStringUTFChars(text, nullptr) : nullptr) {}
  ~JavaUtf8() {
    if (chars_ != nullptr) env_->ReleaseStringUTFChars(text_, chars_);
  }
  JavaUtf8(const JavaUtf8&) = delete;
  JavaUtf8& operator=(const JavaUtf8&) = delete;

  const char* get() const { return chars_; }

 private:
  JNIEnv* env_;
  jstring text_;
  const char* chars_;
};

}  // namespace

extern "C" {

// initialize(a, b): the second argument is the package path, the first the
// extract path.
JNIEXPORT jboolean JNICALL Java_com_zentra_office_common_KelFont_initialize(JNIEnv* env, jobject,
                                                                           jstring a, jstring b) {
  JavaUtf8 extractPath(env, a);
  JavaUtf8 packagePath(env, b);
  return InitFontManager(packagePath.get(), extractPath.get()) ? JNI_TRUE : JNI_FALSE;
}

JNIEXPORT void JNICALL Java_com_zentra_office_common_KelFont_uninitialize(JNIEnv*, jobject) {
  UnInitFontManager();
}

JNIEXPORT void JNICALL Java_com_zentra_office_common_KelFont_setSharedFontPath(JNIEnv* env, jobject,
                                                                              jstring path) {
  JavaUtf8 text(env, path);
  SetSharedFontPath(text.get());
}

JNIEXPORT void JNICALL Java_com_zentra_office_common_KelFont_setUserFontPath(JNIEnv* env, jobject,
                                                                            jstring path) {
  JavaUtf8 text(env, path);
  SetUserFontPath(text.get());
}

JNIEXPORT void JNICALL Java_com_qr_common_font_MainActivity_testFont(JNIEnv*, jobject) {
  qro_base::logProfile("Java_com_qr_common_font_MainActivity_testFont() start ");
  SetSharedFontPath("/sdcard/.Kel/Quire9/Shared/Fonts/");
  SetUserFontPath("/sdcard/a/");
  if (InitFontManager("/mnt/sdcard/Qrfont/", "/mnt/sdcard/Qrfont/")) {
    qro_base::logProfile("InitFontManager SUCCESS");
  } else {
    qro_base::logProfile("InitFontManager Fail");
  }
  UnInitFontManager();
  qro_base::logProfile("UnInitFontManager ");
}

}  // extern "C"
