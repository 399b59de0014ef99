#!/bin/sh
# Makes the media that the picture tests play, with ffmpeg, into the folder given. Runs once: a folder
# that is complete for this version of the script is left alone.
#
# The sound of most files is 12 s of noise (200 to 3000 Hz, another one on each side), so that a piece
# heard can be found in source.wav to the millisecond; the picture has four coloured quarters and a
# grey centre that grows lighter every second.
set -eu

out=$1
stamp="$out/complete-$(cksum < "$0" | tr ' ' '-')"
[ -e "$stamp" ] && exit 0
rm -rf "$out"
mkdir -p "$out"
cd "$out"

size() { wc -c < "$1"; }
make() { ffmpeg -hide_banner -loglevel error -nostdin -y "$@"; }

noise() { echo "anoisesrc=d=$3:c=white:r=44100:a=0.7:seed=$1,highpass=f=200,lowpass=f=3000[$2]"; }

make -filter_complex "$(noise 1 l 12);$(noise 2 r 12);[l][r]join=inputs=2:channel_layout=stereo[o]" \
    -map '[o]' -c:a pcm_s16le source.wav

# Quarters: red, green / blue, white; centre: grey, 18 levels up each second.
quarters() { # size
    w=${1%x*} h=${1#*x}
    hw=$((w / 2)) hh=$((h / 2)) cw=$((w / 4)) ch=$((h / 4))
    echo "color=c=white:s=$1:r=25:d=12,drawbox=0:0:$hw:$hh:red:fill,drawbox=$hw:0:$hw:$hh:lime:fill,\
drawbox=0:$hh:$hw:$hh:blue:fill[g];color=c=black:s=${cw}x$ch:r=25:d=12,\
format=yuv420p,geq=lum='16+floor(T)*18':cb=128:cr=128[c];[g][c]overlay=(W-w)/2:(H-h)/2"
}
make -f lavfi -i "$(quarters 320x240)" -c:v mpeg4 -q:v 2 -g 50 picture.avi

film() { # file, video codec, sound codec, further arguments
    file=$1 video=$2 sound=$3
    shift 3
    make -i picture.avi -i source.wav -map 0:v -map 1:a -c:v "$video" -b:v 800k -g 50 \
        -c:a "$sound" -b:a 192k "$@" "$file"
}
film film.mp4 libx264 aac -preset ultrafast -pix_fmt yuv420p -movflags +faststart
film film.flv flv libmp3lame
film film.avi mpeg4 libmp3lame
film vbr.avi mpeg4 libmp3lame -b:a 0 -q:a 4
film film.mpg mpeg1video mp2
film film2.mpg mpeg2video mp2 -f vob
film film.wmv wmv2 wmav2
film film.mkv libx264 aac -preset ultrafast -pix_fmt yuv420p
film film.ts libx264 aac -preset ultrafast -pix_fmt yuv420p
film film.ogv libtheora libvorbis -pix_fmt yuv420p
film film.webm libvpx libvorbis -deadline realtime -cpu-used 8 -live 1
film film.mov mpeg4 pcm_s16le

make -i source.wav -c:a wmav2 -b:a 192k sound.wma
make -i source.wav -c:a tta sound.tta
make -i source.wav -c:a aac -b:a 192k sound.m4a
make -i source.wav -c:a aac -b:a 192k -f adts sound.aac
make -i source.wav -c:a wavpack sound.wv
make -i source.wav -c:a ac3 -b:a 192k sound.ac3
make -i source.wav -c:a aac -b:a 192k -f matroska -live 1 sound_live.mka
# A raw stream whose bit rate changes: any guess from its first frames is far off.
make -i source.wav -t 4 -af volume=0.001 -c:a aac -b:a 24k -f adts quiet.aac
cat quiet.aac sound.aac > uneven.aac
make -i source.wav -map_channel 0.0.0 -c:a tta mono.tta
make -f lavfi -i "sine=f=1000:r=44100:d=12,volume=4" -c:a tta -sample_fmt s16 tone.tta
make -f lavfi -i "aevalsrc='0.5*sin(2*PI*1000*t)|0.5*sin(2*PI*2000*t)':s=44100:d=12" -c:a tta \
    -sample_fmt s16 two_tones.tta
# Six channels: a tone of its own in each front corner, silence in the others.
make -f lavfi -i "aevalsrc='0.3*sin(2*PI*1000*t)|0.3*sin(2*PI*2000*t)|0|0|0|0':s=44100:d=12:c=5.1" \
    -c:a flac surround.flac
make -f lavfi -i "sine=f=1000:r=44100:d=60,volume=4" -c:a aac -b:a 64k long.m4a
make -i tone.tta -t 0.15 -c:a tta short.tta
make -i tone.tta -ac 1 -c:a tta mono_tone.tta
make -f lavfi -i "aevalsrc='0.5*sin(2*PI*1000*t)|0':s=44100:d=60" -c:a aac -b:a 64k left_tone.m4a
make -f lavfi -i testsrc=s=640x360:r=25:d=60 -i long.m4a -i left_tone.m4a -map 0:v -map 1:a \
    -c:v libx264 -preset ultrafast -g 250 -pix_fmt yuv420p -c:a copy tone_film.mp4
make -i tone_film.mp4 -i left_tone.m4a -map 0:v -map 1:a -c copy left_tone_film.mp4

# The same sound for the sound device.
make -i source.wav -c:a libmp3lame -b:a 128k cbr.mp3
make -i source.wav -c:a libmp3lame -q:a 4 vbr.mp3
make -i source.wav -c:a libmp3lame -q:a 4 -write_xing 0 -id3v2_version 0 vbr_headless.mp3
for rate in 8000 11025 16000 22050 24000 32000 48000; do
    make -i source.wav -ar $rate -c:a libmp3lame -b:a 64k rate$rate.mp3
done
make -i source.wav -map_channel 0.0.0 -c:a libmp3lame -b:a 64k mono.mp3
make -i source.wav -c:a pcm_u8 bits8.wav
make -i source.wav -c:a pcm_s24le bits24.wav
make -i source.wav -c:a pcm_s32le bits32.wav
make -i source.wav -c:a pcm_f32le float.wav
make -i source.wav -c:a flac sound.flac
make -i source.wav -c:a libvorbis -q:a 6 sound.ogg
make -i source.wav -c:a libopus -b:a 128k sound.opus
make -i source.wav -c:a pcm_s16be sound.aiff
make -i source.wav -c:a pcm_s16be sound.au
# One note a second, on the beat, for four seconds: 120 beats a minute, 480 ticks to a beat.
track() {
    printf '\000\377\121\003\007\241\040\000\300\000'
    for note in 1 2 3 4; do printf '\000\220\074\177\207\100\200\074\000'; done
    printf '\000\377\057\000'
}
track > track.bin
byte() { printf "\\$(printf '%03o' "$1")"; }
{
    printf 'MThd\000\000\000\006\000\000\000\001\001\340MTrk\000\000\000'
    byte "$(size track.bin)"
    cat track.bin
} > sound.mid
{
    midi=$(size sound.mid)
    printf RIFF
    byte $((midi + 12 + midi % 2))
    printf '\000\000\000RMIDdata'
    byte "$midi"
    printf '\000\000\000'
    cat sound.mid
    [ $((midi % 2)) = 0 ] || printf '\000'
} > sound.rmi
rm track.bin

make -f lavfi -i color=c=red:s=64x64:d=1 -frames:v 1 cover.png
make -i source.wav -i cover.png -map 0:a -map 1:v -c:a aac -c:v copy -disposition:v attached_pic cover.m4a
make -i picture.avi -c:v copy silent.avi
# A picture each millisecond: the next one is due before this one is drawn.
make -f lavfi -i "$(quarters 160x120)" -t 3 -vf fps=1000 -c:v libx264 -preset ultrafast -g 100 \
    -pix_fmt yuv420p quick_pictures.mp4
make -i film.mp4 -map 0 -c copy -metadata:s:v rotate=90 rotated.mp4
make -f lavfi -i "$(quarters 160x90)" -t 3 -c:v mpeg2video -f mpegts small.ts
make -f lavfi -i "$(quarters 640x360)" -t 3 -c:v mpeg2video -f mpegts large.ts
cat small.ts large.ts > size_change.ts
make -f lavfi -i color=c=red:s=7680x4320:r=10:d=2 -f lavfi -i sine=d=2 -c:v libx264 -preset ultrafast \
    -pix_fmt yuv420p -c:a aac -shortest huge_picture.mp4

# What is broken, or no medium at all.
head -c $(($(size film.mp4) / 2)) film.mp4 > truncated.mp4
head -c $(($(size film.avi) / 2)) film.avi > truncated.avi
head -c $(($(size film.flv) / 2)) film.flv > truncated.flv
head -c $(($(size sound.tta) / 2)) sound.tta > truncated.tta
head -c $(($(size sound.wma) / 2)) sound.wma > truncated.wma
head -c $(($(size film.mpg) / 2)) film.mpg > truncated.mpg
head -c 64 film.mp4 > only_header.mp4
: > empty.mp4
printf 'Once upon a time there was a text.\n%.0s' $(seq 200) > text.mp4
head -c 300000 source.wav | tail -c 200000 | gzip -9 | head -c 100000 > random.mp4
printf '\0\0\0\040ftypisom\0\0\2\0isomiso2avc1mp41\377\377\377\360moov\0\0\0\154mvhd' > huge_header.mp4
(head -c 40000 film.avi; head -c 60000 random.mp4; tail -c 200000 film.avi) > damaged.avi
(head -c 60000 film.mp4; head -c 60000 random.mp4; tail -c +120001 film.mp4) > damaged.mp4
# Forms that name further files: none of them may be followed.
printf '#EXTM3U\n#EXTINF:12,x\n%s\n' "$out/film.mp4" > list.mp4
printf '# mpv EDL v0\n%s\n' "$out/film.mp4" > edl.mp4
printf 'FILE "film.mp4" WAVE\n  TRACK 01 AUDIO\n    INDEX 01 00:00:00\n' > cue.mp4
printf '#EXTM3U\n#EXT-X-TARGETDURATION:12\n#EXTINF:12,\n%s\n#EXT-X-ENDLIST\n' "$out/film.ts" > hls.mp4
printf "ffconcat version 1.0\nfile '%s'\n" film.mp4 > concat.mp4
cp cover.png still.mp4
rm -f picture.avi.tmp quiet.aac small.ts large.ts
touch "$stamp"
