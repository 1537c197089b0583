#!/usr/bin/env bash
# Signs Windows programs in place with an Authenticode signature (SHA-256) and an RFC 3161 time
# stamp, through osslsigncode. The build calls it on Lumivane.scr and Lumivane.exe right after
# they are linked, and makensis on the uninstaller and on the setup program before each is
# finished (docs/installer.md). Without a certificate it does nothing at all.
#
#   scripts/sign.sh FILE...
#
# The certificate comes from the environment, in one of two forms:
#   LUMIVANE_SIGN_PKCS12          a PKCS#12 file (.pfx, .p12) that holds the key and the certificates
#   LUMIVANE_SIGN_CERT            or: the certificate with its chain (PEM or DER) ...
#   LUMIVANE_SIGN_KEY             ... and its private key
#   LUMIVANE_SIGN_PASSWORD        the password of the PKCS#12 file or of the key, if it has one
#   LUMIVANE_SIGN_TIMESTAMP_URL   the time-stamp server; without one the signatures stop being
#                                 valid when the certificate expires
set -euo pipefail

pkcs12="${LUMIVANE_SIGN_PKCS12:-}"
cert="${LUMIVANE_SIGN_CERT:-}"
key="${LUMIVANE_SIGN_KEY:-}"
password="${LUMIVANE_SIGN_PASSWORD:-}"
timestamp="${LUMIVANE_SIGN_TIMESTAMP_URL:-}"

fail() { echo "sign.sh: $*" >&2; exit 1; }

if [ -z "$pkcs12$cert$key" ]; then
  exit 0
fi
# A half-given certificate is a mistake in the release set-up: stop rather than ship unsigned.
if [ -n "$pkcs12" ] && [ -n "$cert$key" ]; then
  fail "give LUMIVANE_SIGN_PKCS12 or LUMIVANE_SIGN_CERT with LUMIVANE_SIGN_KEY, not both"
fi
if [ -z "$pkcs12" ] && { [ -z "$cert" ] || [ -z "$key" ]; }; then
  fail "LUMIVANE_SIGN_CERT and LUMIVANE_SIGN_KEY go together"
fi
command -v osslsigncode >/dev/null || fail "osslsigncode not found: install the Debian package"

if [ -n "$pkcs12" ]; then
  credentials=(-pkcs12 "$pkcs12")
else
  credentials=(-certs "$cert" -key "$key")
fi
stamp=()
if [ -n "$timestamp" ]; then
  stamp=(-ts "$timestamp")
else
  echo "sign.sh: no LUMIVANE_SIGN_TIMESTAMP_URL: signing without a time stamp" >&2
fi

for file in "$@"; do
  [ -f "$file" ] || fail "no file $file"
  # The password goes through a pipe, never on a command line that other users can list.
  args=(sign "${credentials[@]}" -h sha256 -n Lumivane "${stamp[@]}")
  signed="$file.signing"
  rm -f "$signed"
  if [ -n "$password" ]; then
    osslsigncode "${args[@]}" -readpass <(printf '%s' "$password") -in "$file" -out "$signed" \
      >/dev/null || { rm -f "$signed"; fail "signing $file failed"; }
  else
    osslsigncode "${args[@]}" -in "$file" -out "$signed" >/dev/null ||
      { rm -f "$signed"; fail "signing $file failed"; }
  fi
  # The signed copy replaces the file whole, with the file's own permissions.
  chmod --reference="$file" "$signed"
  mv -f "$signed" "$file"
  echo "sign.sh: signed $file"
done
