#pragma once

#include <array>
#include <string_view>

namespace velto {

/// An entry of the caches folder with something in it that no program makes again by itself, or
/// only at a price that nobody should pay unasked.
struct NeverTakenCache {
    std::string_view name;    // of the entry, whatever the case; "*" at its end stands for any rest
    std::string_view reason;  // what would be lost
    std::string_view source;  // what says so
};

inline constexpr auto cachesNeverTaken = std::to_array<NeverTakenCache>({
    // clang-format off

    // Files on their way to somewhere else.
    {"rclone", "changed files of a mount that are not uploaded yet, what bisync last saw",
     "rclone.org: mount, VFS file caching; bisync, working directory"},
    {"onedriver", "changed files on their way to the server, the sign-in",
     "github.com/jstaf/onedriver: pull request 36, issue 99"},
    {"kioexec", "edited copies of remote files, before they are sent back",
     "KDE KIO: src/kioexec/README"},
    {"obexd", "files received over Bluetooth", "BlueZ: obexd(8), --root"},

    // Backups: the next one needs it, or has to fetch and compute it again for hours.
    {"borg", "the index of a repository, hours to compute again",
     "borgbackup.readthedocs.io: Frequently asked questions, cache"},
    {"restic", "the index of a repository, to be fetched again from far away",
     "restic.readthedocs.io: Caching"},
    {"kopia", "the index of a repository, to be fetched again from far away",
     "kopia.io: Caching"},
    {"duplicity", "the signatures that the next backup continues from",
     "duplicity(1): --archive-dir"},
    {"deja-dup", "the signatures that the next backup continues from",
     "duplicity(1): --archive-dir, which Déjà Dup sets"},

    // Models: gigabytes that somebody has chosen and fetched.
    {"huggingface", "models and data sets, the sign-in token",
     "huggingface.co: huggingface_hub, Environment variables, HF_HOME"},
    {"torch", "models", "pytorch.org: torch.hub, where are downloaded models saved"},
    {"whisper", "models", "github.com/openai/whisper: load_model, download_root"},
    {"clip", "models", "github.com/openai/CLIP: clip.load, download_root"},
    {"gpt4all", "models", "docs.gpt4all.io: Python SDK, model_path"},
    {"ollama", "models, where OLLAMA_MODELS leads here", "docs.ollama.com: FAQ"},
    {"llama.cpp", "models", "github.com/ggml-org/llama.cpp: LLAMA_CACHE"},
    {"lm-studio", "models", "lmstudio.ai: Docs, models directory"},
    {"keras", "models, where KERAS_HOME leads here", "keras.io: get_file, KERAS_HOME"},
    {"kagglehub", "models and data sets", "github.com/Kaggle/kagglehub: KAGGLEHUB_CACHE"},
    {"modelscope", "models and data sets", "modelscope.cn: MODELSCOPE_CACHE"},
    {"instructlab", "models", "github.com/instructlab/instructlab: ilab model download"},
    {"vosk", "models", "alphacephei.com/vosk: Python module, model cache"},
    {"suno", "models", "github.com/suno-ai/bark: XDG_CACHE_HOME"},

    // What editors keep of what was written.
    {"JetBrains", "the local history of edited files",
     "jetbrains.com: Directories used by the IDE, system directory; Local History"},
    {"Google", "Android Studio's local history of edited files",
     "jetbrains.com: Local History; developer.android.com: Android Studio, directories"},
    {"RawTherapee*", "the edits of photos, where they are saved to the cache",
     "rawpedia.rawtherapee.com: Image Processing Tab, Processing Profile Handling"},
    {"pre-commit", "changes taken out of a work tree while hooks run",
     "github.com/pre-commit/pre-commit: issues 733 and 1969"},

    // What other folders stand on.
    {"pypoetry", "the virtual environments of projects",
     "python-poetry.org: Configuration, virtualenvs.path"},
    {"R", "packages that the libraries of projects link to", "rstudio.github.io/renv: Cache"},
    {"org.R-project.R", "packages that the libraries of projects link to",
     "rstudio.github.io/renv: Cache"},
    {"deno", "the storage and databases of scripts",
     "docs.deno.com: localStorage, Deno.openKv; deno info, origin storage"},
    {"winetricks", "installers fetched by hand, some no longer on offer", "winetricks(1)"},

    // Mail, sessions, keys, clipboards.
    {"evolution", "mail, and changes made offline that are not sent yet",
     "help.gnome.org: Evolution, working offline"},
    {"sessions", "saved sessions of the desktop", "docs.xfce.org: xfce4-session"},
    {"xfce4", "the clipboard's history", "docs.xfce.org: xfce4-clipman-plugin"},
    {"cliphist", "the clipboard's history", "github.com/sentriz/cliphist: db-path"},
    {"git", "the socket of the store of passwords", "git-credential-cache(1)"},
    {"keyring-*", "the sockets of the key store", "wiki.gnome.org: GNOME Keyring, daemon"},
    {"keepassxc", "which databases and key files were used", "keepassxc.org: User Guide"},

    // Bought or chosen for when there is no network.
    {"spotify", "songs kept to be heard offline", "support.spotify.com: Storage"},
    {"com.spotify.client", "songs kept to be heard offline", "support.spotify.com: Storage"},
    // clang-format on
});

}  // namespace velto
