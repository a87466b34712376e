// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/help/HelpPage.h"

// The manual's texts, as the program shows them.

namespace Ondrilet {

HelpPage helpPage(HelpSection section)
{
    switch (section) {
    case HelpSection::gettingStarted:
        return HelpPage{
            QStringLiteral("Welcome to Ondrilet"),
            QStringLiteral("Professional media conversion for macOS"),
            {
                {QStringLiteral("Quick Start"),
                 QStringLiteral("• Drag and drop media files to begin conversion\n• Select your "
                                "desired output format from the preset menu\n• Click \"Convert\" "
                                "to start processing\n• Monitor progress in real-time\n• Find "
                                "converted files in the output directory")},
                {QStringLiteral("Supported Formats"),
                 QStringLiteral(
                     "**Audio Input:** MP3, WAV, AIFF, M4A, CAF, FLAC, AAC\n**Audio Output:** WAV, "
                     "AIFF, CAF, M4A (AAC/HE-AAC/HE-AAC v2/ALAC)\n**Video Input:** MP4, MOV, AVI, "
                     "MKV, M4V\n**Video Output:** MP4, MOV, ProRes 422/4444, H.264, H.265")},
                {QStringLiteral("System Requirements"),
                 QStringLiteral("• macOS 13.0 or later\n• 4GB RAM minimum (8GB recommended)\n• 2GB "
                                "free disk space\n• Intel or Apple Silicon Mac")},
            },
        };
    case HelpSection::audioConversion:
        return HelpPage{
            QStringLiteral("Audio Conversion"),
            QStringLiteral(
                "Professional audio conversion with codec-specific optimizations for broadcast, "
                "\nstreaming, and archival workflows. Choose the right codec for your use case."),
            {
                {QStringLiteral("Audio Presets"),
                 QStringLiteral(
                     "**Professional Audio:** High-quality settings for studio work\n• "
                     "WAV/AIFF/CAF: Uncompressed, lossless quality\n• ALAC: Apple Lossless "
                     "compression\n• Sample rates: 44.1kHz, 48kHz, 96kHz\n• Bit depths: 16-bit, "
                     "24-bit\n\n**Consumer Audio:** Optimized for everyday use\n• AAC: Standard "
                     "compression (128+ kbps recommended)\n• HE-AAC: High efficiency (24-64 kbps "
                     "optimal)\n• HE-AAC v2: Ultra-low bitrate (16-32 kbps, stereo only)\n• M4A: "
                     "Apple ecosystem compatibility")},
                {QStringLiteral("Quality Settings"),
                 QStringLiteral(
                     "**Sample Rate:** Higher rates (96kHz) for professional audio\n**Bit Depth:** "
                     "24-bit for maximum dynamic range\n**Bitrate:** Codec-specific optimal "
                     "ranges:\n• HE-AAC v2: 16-32 kbps (stereo only, DAB+ radio)\n• HE-AAC: 24-64 "
                     "kbps (mobile streaming, podcasts)\n• AAC: 128+ kbps (high-quality "
                     "streaming)\n**Channels:** Stereo or mono output")},
                {QStringLiteral("Workflow"),
                 QStringLiteral(
                     "1. Select audio files for conversion\n2. Choose audio preset "
                     "(Professional/Consumer)\n3. Adjust quality settings if needed\n4. Set output "
                     "directory\n5. Start conversion\n6. Monitor progress and verify output")},
            },
        };
    case HelpSection::videoConversion:
        return HelpPage{
            QStringLiteral("Video Conversion"),
            QStringLiteral("Professional video conversion with codec-specific quality modes, "
                           "advanced \ndeinterlacing, and broadcast-ready output formats for "
                           "cinema, television, \nand streaming workflows."),
            {
                {QStringLiteral("Professional Video Codecs"),
                 QStringLiteral(
                     "**ProRes 422:** Apple's broadcast standard codec\n• Television Production: "
                     "1080p/4K, 10-bit color depth\n• Post-Production: Excellent "
                     "quality/performance balance\n• File Size: ~1GB per minute (1080p), preserves "
                     "detail\n• Best for: Final Cut Pro, broadcast delivery, color "
                     "grading\n\n**ProRes 4444:** Premium codec with alpha channel support\n• "
                     "Cinema/VFX: 4K, 12-bit color, uncompressed alpha channel\n• Motion Graphics: "
                     "Preserves transparency for compositing\n• File Size: ~2GB per minute "
                     "(1080p), maximum quality\n• Best for: Visual effects, motion graphics, "
                     "archival masters\n\n**H.264 (AVC):** Universal compatibility, efficient "
                     "compression\n• YouTube/Streaming: CRF 18-23 (high), 5-10 Mbps (4K)\n• "
                     "Broadcast Delivery: Two-pass VBR, CBR for live streaming\n• File Size: "
                     "~100-500MB per minute (1080p)\n• Best for: Final distribution, web delivery, "
                     "mobile playback")},
                {QStringLiteral("Advanced Video Codecs"),
                 QStringLiteral(
                     "**H.265 (HEVC):** Next-generation compression, 50% better efficiency\n• 4K "
                     "Content: CRF 20-28, superior quality at lower bitrates\n• HDR/10-bit: Main10 "
                     "profile for HDR content delivery\n• File Size: ~50-250MB per minute (1080p), "
                     "40% smaller than H.264\n• Best for: 4K streaming, HDR content, "
                     "bandwidth-limited distribution\n\n**Quality Modes Explained:**\n• CRF "
                     "(Constant Rate Factor): Variable bitrate, consistent quality\n• VBR "
                     "(Variable Bitrate): Adapts to content complexity\n• Two-Pass VBR: "
                     "Professional mode, analyzes entire video first\n• ABR (Average Bitrate): "
                     "Predictable file sizes for delivery\n\n**CRF Quality Ranges (5-35):**\n• CRF "
                     "5-10: Almost no compression; human eye can't distinguish below ~10\n• CRF "
                     "11-14: Extremely high quality; file size skyrockets; practically lossless\n• "
                     "CRF 15-17: Very high quality; large file; near visually lossless\n• CRF "
                     "18-23: Visually transparent; indistinguishable from source to most "
                     "viewers\n• CRF 24-27: Good quality; balanced file size\n• CRF 28-35: Lower "
                     "quality; streaming-friendly; smaller files")},
                {QStringLiteral("Professional Recommendations"),
                 QStringLiteral(
                     "**Broadcast Standards & Frame Rates:**\n• **PAL (Europe/Asia):** 25fps, "
                     "50fps for sports, 1080i50 for broadcast\n• **NTSC (Americas):** 29.97fps "
                     "standard, 23.976fps for film content\n• **Cinema:** 24fps (film standard), "
                     "23.976fps (broadcast compatibility)\n• **Digital Cinema:** 24fps (DCP), 4K "
                     "DCI resolution\n\n**Streaming Platform Frame Rates:**\n• **YouTube:** 24fps "
                     "(cinema), 25fps (PAL), 30fps/60fps (content-dependent)\n• **Netflix:** "
                     "23.976fps (film), 25fps (PAL), 29.97fps (NTSC), 50/60fps (HFR)\n• **Social "
                     "Media:** 30fps standard, 60fps for smooth motion content\n• "
                     "**Gaming/Sports:** 60fps for fluid motion, competitive gaming\n\n**Frame "
                     "Rate Conversion Guidelines:**\n• **Film to Broadcast:** 24fps → 23.976fps "
                     "(0.1% speed adjustment)\n• **PAL Speedup:** 24fps → 25fps (4.17% faster, "
                     "pitch correction needed)\n• **Cross-Region:** 25fps ↔ 29.97fps (standard "
                     "frame conversion)\n• **HFR Content:** 60fps → 30fps (motion blur may be "
                     "needed)\n\n**Archive/Master Frame Rates:**\n• **Film Archive:** Preserve "
                     "original 24fps for film content\n• **Broadcast Master:** Match regional "
                     "standard (25fps PAL, 29.97fps NTSC)\n• **Digital Cinema:** 24fps ProRes 4444 "
                     "XQ for color grading\n• **Intermediate Files:** Match project frame rate for "
                     "seamless editing")},
                {QStringLiteral("Interlacing Options"),
                 QStringLiteral(
                     "**Interlacing Mode:** Controls how interlaced content is handled during "
                     "conversion.\n\n**Keep Original:**\n• Preserves the original interlaced "
                     "format\n• Best for broadcast workflows requiring interlaced output\n• "
                     "Supported output formats: MOV, MXF, AVI\n\n**Make Progressive:**\n• Converts "
                     "interlaced content to progressive\n• Automatic deinterlacing during "
                     "conversion\n• Recommended for web, streaming, and modern displays\n• Best "
                     "quality for most use cases")},
                {QStringLiteral("Frame Rate Control"),
                 QStringLiteral(
                     "**Frame Rate Selection:** Standard frame rate conversion for different "
                     "platforms\n• **Source:** Maintains original frame rate (recommended for most "
                     "content)\n• **Cinema:** 23.976fps, 24fps\n• **Broadcast:** 25fps (PAL), "
                     "29.97fps (NTSC), 30fps\n• **High Frame Rate:** 50fps, 59.94fps, "
                     "60fps\n\n**How It Works:**\n• Uses standard frame duplication/dropping (no "
                     "interpolation)\n• Higher frame rates duplicate existing frames\n• Lower "
                     "frame rates drop frames to match target rate\n• Preserves original motion "
                     "characteristics\n\n**Best Results:**\n• Source frame rate for most "
                     "content\n• Choose target rate based on delivery platform\n• Higher rates "
                     "increase file size")},
                {QStringLiteral("Video Settings"),
                 QStringLiteral("**Resolution:** Output video dimensions (720p, 1080p, 4K, or "
                                "Source)\n**Frame Rate:** Professional frame rate control with "
                                "broadcast standards\n**Codec:** Compression algorithm (H.264, "
                                "H.265, ProRes)\n**Quality Mode:** CRF, VBR, ABR, or Two-Pass "
                                "encoding\n**Audio Codec:** Format-compatible audio encoding (AAC, "
                                "PCM, ALAC)\n**Interlacing:** Keep Original or Make Progressive")},
                {QStringLiteral("Workflow"),
                 QStringLiteral("1. Select video files for conversion\n2. Choose video preset "
                                "(Professional/Consumer)\n3. Configure interlacing settings\n4. "
                                "Adjust video quality parameters\n5. Set output directory\n6. "
                                "Start conversion\n7. Monitor progress and verify output")},
            },
        };
    case HelpSection::presets:
        return HelpPage{
            QStringLiteral("Preset Management"),
            QStringLiteral("Presets save your preferred conversion settings for quick access."),
            {
                {QStringLiteral("Using Presets"),
                 QStringLiteral("• Select a preset from the dropdown menu\n• Presets automatically "
                                "configure all settings\n• Modify settings after selecting a "
                                "preset\n• Save custom presets for future use")},
                {QStringLiteral("Preset Categories"),
                 QStringLiteral(
                     "**Professional Audio:** Studio-quality audio conversion\n**Consumer Audio:** "
                     "Everyday audio conversion\n**Professional Video:** Broadcast-quality video "
                     "conversion\n**Consumer Video:** Social media and sharing")},
                {QStringLiteral("Custom Presets"),
                 QStringLiteral(
                     "• Configure settings to your preference\n• Click \"Save as Preset\" in the "
                     "preset manager\n• Name your preset descriptively\n• Edit or delete presets "
                     "in the preset manager\n• Import/export presets for sharing")},
                {QStringLiteral("Preset Manager"),
                 QStringLiteral(
                     "Access via: App Menu → Preset Manager (⌘⇧P)\n\nFeatures:\n• View all "
                     "available presets\n• Edit existing presets\n• Create new custom presets\n• "
                     "Delete unwanted presets\n• Organize presets by category\n• Save audio level "
                     "settings (dBFS / LUFS) with each preset")},
            },
        };
    case HelpSection::audioLevelProcessing:
        return HelpPage{
            QStringLiteral("Audio Level Processing"),
            QStringLiteral(
                "Control output levels for professional consistency and platform compliance."),
            {
                {QStringLiteral("Processing Modes"),
                 QStringLiteral("• None: No level processing\n• dBFS Normalization: Peak-based "
                                "target from -20.0 to -0.2 dBFS (0.1 steps)\n• Integrated LUFS: "
                                "Loudness-based target from -30 to -10 LUFS (1 step)")},
                {QStringLiteral("LUFS Presets"),
                 QStringLiteral(
                     "• EBU R128: -23 LUFS\n• ATSC A/85: -24 LUFS\n• Spotify: -14 LUFS\n• YouTube: "
                     "-13 LUFS\n• Custom: Any whole LUFS value (-30 to -10)")},
                {QStringLiteral("Brick-Wall Limiting"),
                 QStringLiteral("Output is limited at -0.2 dBFS to avoid clipping in both dBFS and "
                                "LUFS modes.")},
                {QStringLiteral("Technical Implementation"),
                 QStringLiteral(
                     "**EBU R128 Compliance:** Full ITU-R BS.1770 K-weighting "
                     "implementation\n**Dual Gating:** Absolute gate (-70 LUFS) and relative gate "
                     "(-10 dB below ungated)\n**True-Peak Detection:** 4x oversampling for "
                     "accurate peak level measurement\n**Measurement Suite:** Momentary (400ms), "
                     "Short-term (3s), and Integrated loudness\n**Professional Standards:** "
                     "Broadcast, streaming, and archival compliance")},
                {QStringLiteral("Preset Integration"),
                 QStringLiteral("Audio level settings are saved with each preset and applied "
                                "automatically when selecting presets.")},
            },
        };
    case HelpSection::metadataEditor:
        return HelpPage{
            QStringLiteral("Metadata Editor"),
            QStringLiteral("Comprehensive metadata editing for professional file management and "
                           "organization.\nEdit creation dates, basic information, and apply "
                           "settings to entire batches."),
            {
                {QStringLiteral("Creation Date Management"),
                 QStringLiteral("**Keep Original Date:** Preserves the original creation date from "
                                "source files\n**Set Custom Date:** Manually specify a creation "
                                "date and time\n**Write to Filename:** Automatically includes "
                                "creation date in output filename (YYYY-MM-DD format)\n**Current "
                                "Date:** Uses today's date as default when no custom date is set")},
                {QStringLiteral("Basic Information Fields"),
                 QStringLiteral(
                     "**Title:** Track or video title\n**Artist:** Performer or creator "
                     "name\n**Album:** Album or collection name\n**Genre:** Musical or content "
                     "genre\n**Year:** Release or creation year\n**Composer:** Music composer or "
                     "content creator\n**Album Artist:** Primary artist for the "
                     "album\n**Comments:** Additional notes or descriptions")},
                {QStringLiteral("Batch Processing"),
                 QStringLiteral(
                     "**Global Application:** Any edited field automatically applies to ALL files "
                     "in the batch\n**Selective Editing:** Only edited fields are changed, "
                     "unedited fields preserve original metadata\n**Real-time Preview:** See "
                     "changes immediately in the output preview\n**Smart Defaults:** Empty "
                     "metadata slots remain empty unless specifically edited")},
                {QStringLiteral("Workflow"),
                 QStringLiteral("1. Select files for conversion\n2. Expand the Metadata Editor "
                                "section\n3. Configure creation date options\n4. Edit basic "
                                "information fields as needed\n5. Preview changes in the output "
                                "section\n6. Start conversion with metadata applied")},
                {QStringLiteral("Professional Features"),
                 QStringLiteral("**Format Compatibility:** Works with all supported audio and "
                                "video formats\n**Preservation:** Maintains original metadata when "
                                "not explicitly edited\n**File System Integration:** Sets proper "
                                "creation dates in macOS Finder\n**Smart Filenaming:** Optional "
                                "date inclusion in output filenames\n**Batch Consistency:** "
                                "Ensures uniform metadata across multiple files")},
            },
        };
    case HelpSection::settings:
        return HelpPage{
            QStringLiteral("Application Settings"),
            QStringLiteral("Configure app behavior and default preferences."),
            {
                {QStringLiteral("General Settings"),
                 QStringLiteral(
                     "**Default Output Directory:** Where converted files are saved\n**File "
                     "Naming:** How output files are named\n**Overwrite Behavior:** How to handle "
                     "existing files\n**Notifications:** Conversion completion alerts")},
                {QStringLiteral("Performance Settings"),
                 QStringLiteral("**Memory Management:** Buffer size and memory "
                                "limits\n**Processing Priority:** CPU usage during "
                                "conversion\n**Batch Processing:** Number of simultaneous "
                                "conversions\n**Temporary Files:** Cleanup of intermediate files")},
                {QStringLiteral("Quality Settings"),
                 QStringLiteral(
                     "**Default Quality:** Preset quality for new conversions\n**Compression:** "
                     "Default compression settings\n**Interlacing:** Default interlacing "
                     "behavior\n**Audio Quality:** Default audio conversion quality")},
                {QStringLiteral("Accessing Settings"),
                 QStringLiteral("• App Menu → Settings (⌘,)\n• Configure app-wide preferences\n• "
                                "Settings apply to all future conversions\n• Individual "
                                "conversions can override settings")},
            },
        };
    case HelpSection::troubleshooting:
        return HelpPage{
            QStringLiteral("Common Issues"),
            QStringLiteral("Solutions for frequently encountered problems."),
            {
                {QStringLiteral("Conversion Fails"),
                 QStringLiteral("**Check file format:** Ensure input file is supported\n**Verify "
                                "file integrity:** File may be corrupted\n**Check disk space:** "
                                "Ensure sufficient free space\n**Restart app:** Close and reopen "
                                "Ondrilet\n**Check permissions:** Ensure app has file access")},
                {QStringLiteral("Poor Quality Output"),
                 QStringLiteral(
                     "**Increase bitrate:** Higher bitrates for better quality\n**Check "
                     "resolution:** Ensure output resolution is appropriate\n**Verify codec "
                     "settings:** Choose appropriate codec\n**Check interlacing:** Proper "
                     "deinterlacing for video\n**Audio settings:** Ensure audio quality settings")},
                {QStringLiteral("Slow Performance"),
                 QStringLiteral(
                     "**Close other apps:** Free up system resources\n**Check memory:** Ensure "
                     "sufficient RAM available\n**Reduce batch size:** Convert fewer files "
                     "simultaneously\n**Check disk speed:** SSD recommended for faster "
                     "processing\n**Update macOS:** Ensure latest system updates")},
                {QStringLiteral("File Access Issues"),
                 QStringLiteral("**Check permissions:** Grant app access to folders\n**Verify file "
                                "location:** Ensure files are accessible\n**Check file format:** "
                                "Unsupported formats won't work\n**Try different file:** Test with "
                                "known good file\n**Restart app:** Reset file access permissions")},
            },
        };
    case HelpSection::technicalDetails:
        return HelpPage{
            QStringLiteral("Technical Information"),
            QStringLiteral("Detailed technical specifications and implementation details."),
            {
                {QStringLiteral("Audio Codecs"),
                 QStringLiteral(
                     "**WAV:** Uncompressed PCM audio, lossless\n**AIFF:** Apple's uncompressed "
                     "format, lossless\n**CAF:** Core Audio Format, Apple's flexible "
                     "container\n**AAC:** Advanced Audio Coding (128+ kbps "
                     "recommended)\n**HE-AAC:** High Efficiency AAC (24-64 kbps optimal)\n**HE-AAC "
                     "v2:** Ultra-low bitrate AAC (16-32 kbps, stereo)\n**ALAC:** Apple Lossless "
                     "Audio Codec, compressed lossless")},
                {QStringLiteral("Video Codecs"),
                 QStringLiteral("**H.264:** Widely compatible, good compression\n**H.265:** Better "
                                "compression, newer devices\n**ProRes 422:** Apple's professional "
                                "codec, standard quality\n**ProRes 4444:** Apple's premium codec "
                                "with alpha support\n**MP4:** Container format, H.264/H.265 "
                                "content\n**MOV:** Apple's container format, supports ProRes")},
                {QStringLiteral("Frame Rate Technology"),
                 QStringLiteral(
                     "**Standard Frame Rate Conversion:**\n\nOndrilet uses AVVideoComposition for "
                     "reliable frame rate conversion:\n• **Frame Duplication:** For upconversion "
                     "(e.g., 24fps → 60fps)\n• **Frame Dropping:** For downconversion (e.g., 60fps "
                     "→ 24fps)  \n• **CMTime Precision:** Frame-accurate timing using Core "
                     "Media\n• **Fast Processing:** Optimized for speed and "
                     "reliability\n\n**Supported Frame Rates:**\n• **23.976fps:** Film standard "
                     "with precise timing\n• **24fps:** Digital cinema and film production\n• "
                     "**25fps:** PAL broadcast standard (Europe/Asia)\n• **29.97fps:** NTSC "
                     "broadcast standard (Americas)\n• **30fps:** Digital video standard\n• "
                     "**50fps/59.94fps/60fps:** High frame rate content\n\n**Professional "
                     "Quality:**\n• Maintains original video quality without artifacts\n• "
                     "Preserves color space and bit depth\n• Compatible with all video codecs and "
                     "formats\n• Hardware-accelerated when available\n\n**Best Practices:**\n• "
                     "Match target frame rate to delivery platform\n• Consider motion blur for "
                     "significant rate changes\n• Test with representative content samples\n• Use "
                     "source frame rate when possible for best quality")},
                {QStringLiteral("Deinterlacing Algorithms"),
                 QStringLiteral("**YADIF:** Motion-adaptive, excellent edge "
                                "preservation\n**BWDIF:** Optimized for high-motion "
                                "content\n**W3FDIF:** Advanced 3-field analysis\n**Linear Blend:** "
                                "Simple field blending\n**Bob:** Basic field doubling")},
                {QStringLiteral("Performance Metrics"),
                 QStringLiteral(
                     "**Speed Rating:** 1-5 scale (1=slowest, 5=fastest)\n**Quality Rating:** 1-5 "
                     "scale (1=lowest, 5=highest)\n**Memory Usage:** Varies by codec and "
                     "resolution\n**Processing Time:** Depends on file size and settings")},
                {QStringLiteral("System Integration"),
                 QStringLiteral(
                     "**AVFoundation:** Core media processing framework\n**Core Image:** Image "
                     "processing and filters\n**Metal:** GPU acceleration for video "
                     "processing\n**File System:** Native macOS file handling\n**Security:** "
                     "Sandboxed app with proper permissions")},
            },
        };
    }
    return {};
}

} // namespace Ondrilet
