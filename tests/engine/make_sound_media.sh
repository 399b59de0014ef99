#!/bin/sh
# Makes the sound files of the engine tests in the folder given. Lasts a few seconds the first time;
# afterwards only when this script has changed.
#
# The main signal is a sine that rises from 300 Hz by 200 Hz each second, so that any short piece of
# it tells its place; it lasts 10.123 s.
set -eu

out=$1
self=$0
mkdir -p "$out"
cd "$out"
if [ -f stamp ] && [ stamp -nt "$self" ]; then
    exit 0
fi
rm -f stamp

quiet="-nostdin -hide_banner -loglevel error -y"
chirp="aevalsrc=0.5*sin(2*PI*(300*t+100*t*t)):s=44100:d=10.123"

ffmpeg $quiet -f lavfi -i "$chirp" -c:a pcm_s16le mono.wav
ffmpeg $quiet -i mono.wav -af "pan=stereo|c0=c0|c1=c0" -c:a pcm_s16le chirp.wav
# Left 440 Hz, right 1000 Hz, both at half scale.
ffmpeg $quiet -f lavfi -i "aevalsrc=0.5*sin(2*PI*440*t)|0.5*sin(2*PI*1000*t):s=44100:d=30" \
    -c:a pcm_s16le sides.wav
# A steady tone that crosses no seam: for listening to clicks, levels and silence.
ffmpeg $quiet -f lavfi -i "aevalsrc=0.5*sin(2*PI*500*t):s=44100:d=60" -af "pan=stereo|c0=c0|c1=c0" -c:a pcm_s16le tone.wav
ffmpeg $quiet -f lavfi -i "aevalsrc=0.5*sin(2*PI*500*t):s=44100:d=1.5" -af "pan=stereo|c0=c0|c1=c0" -c:a pcm_s16le short.wav
# Five quiet and five busy seconds: no mean bit rate tells its length.
ffmpeg $quiet -f lavfi -i "aevalsrc=if(lt(t\,5)\,0.1*sin(2*PI*440*t)\,0.8*(random(0)-0.5)):s=44100:d=10" \
    -ac 2 -c:a pcm_s16le uneven.wav

# MPEG audio: with and without the header that tells the length, tags, other layers.
lame --quiet -b 128 chirp.wav cbr.mp3
lame --quiet -V 2 chirp.wav vbr.mp3
lame --quiet -t -b 128 chirp.wav cbr_bare.mp3
lame --quiet -t -V 2 uneven.wav vbr_bare.mp3
lame --quiet -V 2 uneven.wav vbr_uneven.mp3
lame --quiet --freeformat -b 200 chirp.wav free.mp3 2>/dev/null
lame --quiet -b 128 -m m mono.wav mono.mp3
lame --quiet -V 4 --id3v2-only --pad-id3v2-size 5000 --tt Title --ta Artist chirp.wav id3v2.mp3
lame --quiet -b 64 --id3v1-only --tt Title --ta Artist chirp.wav id3v1.mp3
for rate in 8 11.025 12 16 22.05 24 32 48; do
    lame --quiet --resample $rate -V 4 chirp.wav "rate_$rate.mp3"
done
ffmpeg $quiet -i chirp.wav -c:a mp2 -b:a 192k layer2.mp2
ffmpeg $quiet -i chirp.wav -c:a libmp3lame -b:a 128k mp3_inside.wav

# Wave files of every width, other rates and channel counts.
ffmpeg $quiet -i chirp.wav -c:a pcm_u8 u8.wav
ffmpeg $quiet -i chirp.wav -c:a pcm_s24le s24.wav
ffmpeg $quiet -i chirp.wav -c:a pcm_s32le s32.wav
ffmpeg $quiet -i chirp.wav -c:a pcm_f32le f32.wav
ffmpeg $quiet -i chirp.wav -c:a pcm_f64le f64.wav
ffmpeg $quiet -i chirp.wav -c:a pcm_alaw alaw.wav
ffmpeg $quiet -i chirp.wav -c:a adpcm_ms adpcm.wav
for rate in 8000 11025 22050 48000 96000; do
    ffmpeg $quiet -i chirp.wav -ar $rate -c:a pcm_s16le "rate_$rate.wav"
done
ffmpeg $quiet -f lavfi -i "aevalsrc=0.5*sin(2*PI*(300*t+100*t*t)):s=48000:d=10.123" \
    -af "pan=5.1|FL=c0|FR=0*c0|FC=0*c0|LFE=0*c0|BL=0*c0|BR=0*c0" -c:a pcm_s16le six.wav

# The other forms.
ffmpeg $quiet -i chirp.wav chirp.aiff
ffmpeg $quiet -i chirp.wav chirp.au
ffmpeg $quiet -i chirp.wav chirp.caf
ffmpeg $quiet -i chirp.wav -c:a flac chirp.flac
ffmpeg $quiet -i chirp.wav -c:a libvorbis -q:a 5 chirp.ogg
ffmpeg $quiet -i chirp.wav -c:a libopus -b:a 96k chirp.opus

# The same at another rate and with one channel, to be joined to those.
for form in wav aiff au flac ogg; do
    ffmpeg $quiet -i mono.wav -ar 32000 "other.$form"
done
ffmpeg $quiet -i mono.wav -c:a libopus -b:a 48k other.opus

# What is for the picture device.
picture="-f lavfi -i testsrc=s=160x120:r=25:d=2 -f lavfi -i sine=d=2"
ffmpeg $quiet $picture -c:v mpeg4 -c:a aac film.mp4
ffmpeg $quiet $picture -c:v mpeg4 -c:a libmp3lame film.avi
ffmpeg $quiet $picture -c:v mpeg1video -c:a mp2 film.mpg
ffmpeg $quiet $picture -c:v mpeg2video -c:a mp2 film.ts
ffmpeg $quiet $picture -c:v flv -c:a libmp3lame -ar 44100 film.flv
ffmpeg $quiet $picture -c:v wmv2 -c:a wmav2 film.wmv
ffmpeg $quiet $picture -c:v libtheora -c:a libvorbis film.ogv
ffmpeg $quiet $picture -c:v mpeg4 -c:a libmp3lame film.mkv
ffmpeg $quiet -f lavfi -i sine=d=2 -c:a wmav2 sound.wma
ffmpeg $quiet -f lavfi -i sine=d=2 -c:a aac sound.m4a
ffmpeg $quiet -f lavfi -i sine=d=2 -c:a aac sound.aac
ffmpeg $quiet -f lavfi -i sine=d=2 -c:a tta sound.tta

touch stamp
