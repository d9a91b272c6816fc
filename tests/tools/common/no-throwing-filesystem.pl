#!/usr/bin/perl
# The workbench meets paths made from users' files: a std::filesystem call that can throw would
# abort the tool (a display name of 300 characters makes one). Every call that can fail must take
# a std::error_code; a range-for over a directory iterator advances with the throwing ++.
# Usage: no-throwing-filesystem.pl FILE...; prints each offending line and exits 1.
use strict;
use warnings;

my $calls = join '|', qw(absolute canonical weakly_canonical copy copy_file copy_symlink create_directory
  create_directories create_hard_link create_symlink create_directory_symlink current_path equivalent
  exists file_size hard_link_count is_block_file is_character_file is_directory is_empty is_fifo is_other
  is_regular_file is_socket is_symlink last_write_time permissions proximate read_symlink relative remove
  remove_all rename resize_file space status symlink_status temp_directory_path directory_iterator
  recursive_directory_iterator);
my $members = 'is_directory|is_regular_file|is_symlink|exists|file_size|status|symlink_status|last_write_time|refresh';
my $bad = 0;

# The text between the parenthesis at $pos and its match.
sub args_at {
  my ($text, $pos) = @_;
  my $depth = 0;
  for (my $i = $pos; $i < length $text; ++$i) {
    my $c = substr $text, $i, 1;
    ++$depth if $c eq '(';
    --$depth if $c eq ')';
    return substr $text, $pos + 1, $i - $pos - 1 if $depth == 0;
  }
  return '';
}

for my $file (@ARGV) {
  open my $fh, '<', $file or die "$file: $!\n";
  my $text = do { local $/; <$fh> };
  $text =~ s{//[^\n]*}{}g;  # comments may name the calls
  my @found;
  while ($text =~ /(?:\bfs|std::filesystem)::($calls)\b(?:\s+\w+)?\s*(?=\()/g) {
    my $name = $1;
    push @found, [pos($text), "$name without a std::error_code"] unless args_at($text, pos($text)) =~ /\b\w*[eE]c\b/;
  }
  while ($text =~ /\.($members)\(\s*\)/g) { push @found, [pos($text), "$1() without a std::error_code"]; }
  while ($text =~ /for\s*\([^;()]*?[^:]:\s*(?:fs::|std::filesystem::)?(?:recursive_)?directory_iterator/g) {
    push @found, [pos($text), "range-for over a directory iterator (its ++ throws)"];
  }
  for my $f (@found) {
    my $line = 1 + (() = substr($text, 0, $f->[0]) =~ /\n/g);
    print "$file:$line: $f->[1]\n";
    $bad = 1;
  }
}
exit $bad;
